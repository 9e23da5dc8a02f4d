/// Declares the names of the library's classes, for headers that only pass them on. The header of a class is named as
/// the class, unless a comment says otherwise.
#pragma once

// Text
class TStringCore;
class TFormatStringCore;
class TScanStringCore;
namespace KMP {
class StringTable;  // KMP.h
}

// Errors
class QuillonError;
class QuillonException;
class QuillonOutOfMemoryException;  // QuillonException.h
class QuillonUserErrorException;    // QuillonException.h
class LogicException;
namespace TError {
class ErrorInfo;  // TError.h
}

// What the forms of text for the platform's other unit type are made of
struct TStringOptions;  // TStringOptions.h
namespace qilsys {
class TForeignText;    // TForeignText.h
class TForeignBuffer;  // TForeignText.h
}  // namespace qilsys

// Synchronisation
template <class T>
class RefCntObjectNonVirtualBase;  // ReferenceCount.h
class RefCntObject;                // ReferenceCount.h
class IEvent;                      // TEvent.h
class TEvent;
class TAutoResetEvent;  // TEvent.h
class TCountdownEvent;  // TEvent.h
class TCancelEvent;     // TEvent.h
class TRecursiveMutex;  // TLocks.h
class TReadWriteLock;   // TLocks.h
template <class TLock>
class TScopedLock;  // TLocks.h
template <class TLock>
class TScopedReadLock;  // TLocks.h
class TSemaphore;
class TSemaphoreScope;  // TSemaphore.h

// Tasks
namespace AsyncTask {
class TLS;  // AsyncTaskTls.h
struct Cancel;
class CancelException;
class IWaitHandler;  // WaitHandler.h
class OwningWaitHandlerScopeGuard;
class WaitHandlerScopeGuard;
class IWrappedFuture;
class InvalidFutureException;
class ScopedCancelImpersonation;
class SharedStateBase;  // SharedState.h
}  // namespace AsyncTask
class TThreadPool;
class NonThreadPoolWorkerManager;

// Resource monitoring
class ResourceManager;
class ResourceReporter;
class MonitoredProcess;
struct ProcessMemoryInfo;  // MonitoredProcess.h
namespace qilsys {
class FunctionReporter;  // ResourceReporter.h
}

// Diagnostics
class TStackWalker;
class StackWalkerConfig;  // TStackWalker.h

// Paths
class TPathCore;

// Hashing
class sha2;
