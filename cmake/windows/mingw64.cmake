# Toolchain for 64-bit Windows from a Debian machine; programs of the build are run by Wine.
# scripts/setup-windows lays down what it refers to.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR AMD64)

if(DEFINED ENV{QILSYS_WINDOWS_PREFIX})
  set(QILSYS_WINDOWS_PREFIX $ENV{QILSYS_WINDOWS_PREFIX} CACHE PATH "What scripts/setup-windows laid down")
else()
  set(QILSYS_WINDOWS_PREFIX $ENV{HOME}/.cache/qilsys/windows CACHE PATH "What scripts/setup-windows laid down")
endif()
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES QILSYS_WINDOWS_PREFIX)

# Only the posix variant of this compiler has std::thread and its relatives.
set(triple x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${triple}-gcc-posix)
set(CMAKE_CXX_COMPILER ${triple}-g++-posix)
set(CMAKE_RC_COMPILER ${triple}-windres)

list(APPEND CMAKE_FIND_ROOT_PATH ${QILSYS_WINDOWS_PREFIX} /usr/${triple})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# The interfaces of Windows 10.
set(CMAKE_C_FLAGS_INIT -D_WIN32_WINNT=0x0A00)
set(CMAKE_CXX_FLAGS_INIT -D_WIN32_WINNT=0x0A00)

set(CMAKE_CROSSCOMPILING_EMULATOR ${QILSYS_WINDOWS_PREFIX}/bin/run-wine)
