#include "qilsys/IWrappedFuture.h"

AsyncTask::IWrappedFuture::~IWrappedFuture() = default;
