/// TStringCore, the UTF-16 text value of every interface, with its operators, exceptions and code point iterator.
#pragma once

#include "qilsys/TCodePointIterator.h"
#include "qilsys/TStringCoreClass.h"
#include "qilsys/TStringCoreOperators.h"
#include "qilsys/TStringException.h"
