// A module that calls back while it is being loaded.

// Of the program.
extern "C" int CalledWhileLoading();

static const int s_result = CalledWhileLoading();

extern "C" int ResultOfLoading() { return s_result; }
