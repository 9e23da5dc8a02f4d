// A library for the tests to load: something to point at.
#ifdef _MSC_VER
#define EXPORTED __declspec(dllexport)
#else
#define EXPORTED __attribute__((visibility("default")))
#endif

extern "C" {
EXPORTED extern const int PlaceInModule;
const int PlaceInModule = 1;
}
