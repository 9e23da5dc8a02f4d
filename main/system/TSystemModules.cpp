// Where the files of the program and its modules lie.
#include "qilsys/TSystem.h"

#include "system/ModuleFile_platform.h"

using namespace qilsys::system;

namespace {

TPathCore FolderOf(const TPathCore& file) { return file.HasParentPath() ? file.Parent() : file; }

}  // namespace

TPathCore TSystem::ExecutablePath() { return FolderOf(ExecutableFilename()); }

TPathCore TSystem::ExecutableFilename() { return ModuleFilename(nullptr); }

TPathCore TSystem::ModuleFilename(void const* address) {
  return address != nullptr ? ModuleFileAt(address) : ProgramFile();
}

TPathCore TSystem::ModuleDirectory(void const* address) { return FolderOf(ModuleFilename(address)); }

TPathCore TSystem::ModulePath(TPathCore const& path) {
  const TPathCore filename = path.Filename();
  if (filename.IsEmpty()) return {};
  return ModuleFileNamed(filename.NativeString());
}
