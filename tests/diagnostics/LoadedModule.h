/// A module that a test loads while it runs.
#pragma once

namespace qilsys::test {

/// Loads the module and finds its function; it is never unloaded. Null where that fails.
void* FunctionOfModule(const char* file, const char* name);

}  // namespace qilsys::test
