/// A group of real processes that keeps itself within memory and CPU limits, with no central process.
#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "demo/Director.h"
#include "demo/Member.h"
#include "demo/Preflight.h"
#include "demo/Report.h"
#include "demo/Screen.h"
#include "demo/Setting.h"
#include "qilsys/QuillonException.h"

namespace {

constexpr const char* Usage =
    "usage: qilsys_demo [--port N] [--out FOLDER] [--plain]\n"
    "  --port N      the UDP port at which the members meet; a free one is chosen otherwise\n"
    "  --out FOLDER  where the values and the picture go; qilsys-demo otherwise\n"
    "  --plain       plain lines, also on a terminal\n";

// Exit codes beside 0: the story did not go as told, it could not be begun, it was broken off.
constexpr int Failed = 1;
constexpr int CannotRun = 2;
constexpr int BrokenOff = 130;

struct Options {
  unsigned short m_port = 0;
  std::filesystem::path m_out = "qilsys-demo";
  std::string m_member;
  bool m_plain = false;
  bool m_help = false;
};

unsigned short ReadPort(std::string_view text) {
  unsigned short port = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), port);
  if (result.ec != std::errc() || result.ptr != text.data() + text.size() || port == 0) {
    throw std::invalid_argument("A port is a number from 1 to 65535.");
  }
  return port;
}

Options ReadOptions(const std::vector<std::string>& words) {
  Options options;
  for (size_t i = 0; i < words.size(); ++i) {
    const auto value = [&] {
      if (i + 1 == words.size()) throw std::invalid_argument(words[i] + " needs a value.");
      return words[++i];
    };
    if (words[i] == "--port") {
      options.m_port = ReadPort(value());
    } else if (words[i] == "--out") {
      options.m_out = value();
    } else if (words[i] == "--member") {
      options.m_member = value();
    } else if (words[i] == "--plain") {
      options.m_plain = true;
    } else if (words[i] == "--help") {
      options.m_help = true;
    } else {
      throw std::invalid_argument("Unknown option " + words[i]);
    }
  }
  return options;
}

int RunStory(const Options& options) {
  const unsigned short port = options.m_port != 0 ? options.m_port : demo::FindFreePort();
  demo::CheckPort(port);
  std::cout << "Six members meet at UDP port " << port << " of the loopback; the story takes about half a minute.\n";

  const std::unique_ptr<demo::Screen> screen = demo::MakeScreen(options.m_plain);
  demo::Director director(port, *screen);
  try {
    director.Run();
  } catch (const demo::StoryFailure& failure) {
    demo::PrintSummary(director.Record());
    std::cerr << "\nThe story did not go as told: " << failure.what() << "\n";
    return Failed;
  }
  demo::PrintSummary(director.Record());
  demo::WriteFiles(director.Record(), std::filesystem::absolute(options.m_out));
  std::cout << (director.HasLeftOutBeats()
                    ? "The story went as told, but for the CPU limit: the processors run below their top clock, and "
                      "members then count as idle. The system's performance profile would show it.\n"
                    : "The story went as told.\n");
  return EXIT_SUCCESS;
}

int Run(const Options& options) {
  demo::BareBytes();  // read while there is nothing more
  if (options.m_help) {
    std::cout << Usage;
    return EXIT_SUCCESS;
  }
  if (!options.m_member.empty()) return demo::RunMember(options.m_member, options.m_port);
  return RunStory(options);
}

}  // namespace

int main(int count, char** arguments) try {
  return Run(ReadOptions(std::vector<std::string>(arguments + 1, arguments + count)));
} catch (const demo::Interrupted&) {
  std::cerr << "\nBroken off; all members have been ended.\n";
  return BrokenOff;
} catch (const std::invalid_argument& failure) {
  std::cerr << failure.what() << "\n" << Usage;
  return CannotRun;
} catch (const std::exception& failure) {
  std::cerr << "The demo can't run: " << failure.what() << "\n";
  return CannotRun;
} catch (const QuillonException& failure) {
  std::cerr << "The demo can't run: " << failure.GetConcatenatedMessages().toStdString();
  return CannotRun;
}
