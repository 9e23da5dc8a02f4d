/// Includes all of the namespace AsyncTask: tasks, their futures and their cancellation.
#pragma once

#include "qilsys/AsyncTaskHooks.h"
#include "qilsys/AsyncTaskTls.h"
#include "qilsys/Cancel.h"
#include "qilsys/CancelException.h"
#include "qilsys/IWrappedFuture.h"
#include "qilsys/InvalidFutureException.h"
#include "qilsys/Launch.h"
#include "qilsys/NonThreadPoolWorkerManager.h"
#include "qilsys/ScopedCancelImpersonation.h"
#include "qilsys/SharedState.h"
#include "qilsys/TThreadPool.h"
#include "qilsys/WaitHandler.h"
