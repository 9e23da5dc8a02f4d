// Random paths beside a plain second way: the root by one expression, the elements by their shape and not by steps.
#include <gtest/gtest.h>

#include <algorithm>
#include <regex>
#include <string>
#include <vector>

#include "qilsys/TPathCore.h"
#include "support/Random.h"
#include "support/Utf8.h"

using namespace qilsys::test;

namespace {

using Strings = std::vector<std::string>;

std::string RootNameOf(const std::string& path) {
  static const std::regex Expression(R"(^(?:[A-Za-z]:|//\?/[A-Za-z]:|//\?/[Uu][Nn][Cc]/[^/]*|//[^/?][^/]*|//(?=/)))");
  std::smatch match;
  return std::regex_search(path, match, Expression) ? match.str() : "";
}

/// A path by its three parts; all texts in the generic form.
struct PathModel {
  explicit PathModel(std::string text) {
    std::replace(text.begin(), text.end(), '\\', '/');
    if (text.ends_with('/') && text != RootPathOf(text)) text.pop_back();
    generic = text;
    rootName = RootNameOf(text);
    rest = text.substr(rootName.size());
    hasRootDirectory = rest.starts_with('/');
    if (hasRootDirectory) rest.erase(0, 1);
  }
  static std::string RootPathOf(const std::string& text) {
    const std::string name = RootNameOf(text);
    return name + (text.substr(name.size()).starts_with('/') ? "/" : "");
  }

  bool IsStuck() const { return rest.empty() && !generic.empty(); }

  Strings Elements() const {
    Strings elements;
    if (!rootName.empty()) elements.push_back(rootName);
    if (hasRootDirectory) elements.emplace_back("/");
    std::string names = rest;
    if (!hasRootDirectory && !rest.empty()) {
      elements.push_back(rest.substr(0, rest.find('/')));
      names.erase(0, elements.back().size());
    }
    if (names.starts_with('/')) elements.push_back(names);
    for (std::size_t from = names.find_first_not_of('/'); from < names.size();) {
      const std::size_t end = std::min(names.find('/', from), names.size());
      elements.push_back(names.substr(from, end - from));
      from = names.find_first_not_of('/', end);
    }
    return elements;
  }

  /// Where the filename begins, npos without one.
  std::size_t Filename() const {
    const std::size_t colon = generic.find(':');
    const std::size_t first = generic.find_first_not_of('/', colon == std::string::npos ? 0 : colon + 1);
    const std::size_t last = generic.rfind('/');
    if (first == std::string::npos) return first;
    return last != std::string::npos && last >= first ? last + 1 : first;
  }

  std::string Unfiled() const {
    const std::size_t filename = Filename();
    if (filename == std::string::npos) return generic;
    const bool staysWhole = filename == 0 || (hasRootDirectory && filename == rootName.size() + 1);
    return generic.substr(0, staysWhole ? filename : filename - 1);
  }

  std::string Parent() const {
    std::string parent = Unfiled();
    if (Filename() == std::string::npos && hasRootDirectory && generic.ends_with('/')) parent.pop_back();
    return parent == generic ? "" : parent;
  }

  std::string generic;
  std::string rootName;
  bool hasRootDirectory = false;
  std::string rest;
};

std::string Text(const TPathCore& path) { return Utf8(path.GenericString()); }

/// Of the units that mean something, and of beginnings that do.
std::string RandomText(SeededRandom& random) {
  static constexpr std::string_view Units = "acUN:/\\?.$1 ";
  static const Strings Beginnings = {"", "", "c:", "//", "//?/", "//?/UNC/", "\\\\?\\unc\\", "//s/", "//?/c:"};
  std::string text = Beginnings[random.Between<std::size_t>(0, Beginnings.size() - 1)];
  for (int n = random.Between(0, 12); n > 0; --n) text += Units[random.Between<std::size_t>(0, Units.size() - 1)];
  return text;
}

void ExpectAsModel(const std::string& text) {
  const PathModel model(text);
  const TPathCore path{TStringCore::fromStdString(text)};
  ASSERT_EQ(Text(path), model.generic);
  EXPECT_EQ(Text(path.RootName()), model.rootName);
  EXPECT_EQ(Text(path.RootDirectory()), model.hasRootDirectory ? "/" : "");
  EXPECT_EQ(Text(path.RootPath()), model.rootName + (model.hasRootDirectory ? "/" : ""));
  const std::size_t filename = model.Filename();
  EXPECT_EQ(path.HasFilename(), filename != std::string::npos);
  EXPECT_EQ(Text(path.Filename()), model.generic.substr(std::min(filename, model.generic.size())));
  EXPECT_EQ(Text(path.Parent()), model.Parent());
  EXPECT_EQ(Text(TPathCore(path).RemoveFilename()), model.Unfiled());
  const std::string extension = path.HasExtension() ? "." + Utf8(path.Extension()) : "";
  EXPECT_EQ(Text(path.Stem()) + extension, Text(path.Filename()));
  if (model.IsStuck()) {
    EXPECT_THROW(path.toVector(), TPathCore::Exception);
  } else {
    EXPECT_EQ(Utf8All(path.toVector()), model.Elements());
    EXPECT_EQ(path.size(), model.Elements().size());
  }
}

TEST(TPathCoreModel, GivesTheSameForRandomTexts) {
  SeededRandom random;
  for (int round = Rounds(20000); round > 0; --round) {
    const std::string text = RandomText(random);
    SCOPED_TRACE(text);
    ExpectAsModel(text);
    if (testing::Test::HasFailure()) return;
  }
}

TEST(TPathCoreModel, OfAJoinBeginsWithWhatItIsJoinedTo) {
  SeededRandom random;
  for (int round = Rounds(5000); round > 0; --round) {
    const TPathCore left(TStringCore::fromStdString(RandomText(random)));
    const TPathCore right(TStringCore::fromStdString(RandomText(random)));
    const std::string joined = Text(left / right);
    ASSERT_TRUE(joined.starts_with(Text(left)) && joined.ends_with(Text(right)));
    const std::size_t between = joined.size() - Text(left).size() - Text(right).size();
    ASSERT_LE(between, 1u);
    ASSERT_EQ(Text(left + right), Text(left) + Text(right));
  }
}

TEST(TPathCoreModel, HashesAlikeWhatIsEqual) {
  SeededRandom random;
  for (int round = Rounds(5000); round > 0; --round) {
    const TStringCore text = TStringCore::fromStdString(RandomText(random));
    const TPathCore path(text);
    const TPathCore upper(text.toUpper());
    ASSERT_EQ(path, upper);
    ASSERT_EQ(std::hash<TPathCore>()(path), std::hash<TPathCore>()(upper));
  }
}

}  // namespace
