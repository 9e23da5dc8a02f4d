// The scheme by which a path is asked for step by step, on a system that the test makes up.
#include "paths/NativePath.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "support/StringText.h"

using namespace qilsys::paths;
using namespace qilsys::test;

namespace {

using Forms = std::map<std::u16string, std::u16string>;

/// A system on which some paths have another form, and all others are not there.
class MadeUpSystem {
 public:
  explicit MadeUpSystem(Forms forms = {}) : m_forms(std::move(forms)) {}

  AskForForm Ask() {
    return [this](const TCodeUnit* path, TCodeUnit* buffer, unsigned int size) { return Answer(path, buffer, size); };
  }
  std::string Resolve(const TPathCore& path) { return Narrow(NativePathByForm(path, Ask())); }
  const std::vector<std::string>& Asked() const { return m_asked; }

  /// What a question that finds nothing says.
  bool m_saysMissing = true;
  /// The form grows by this much before the second question.
  std::u16string m_grows;

 private:
  NativeFormAnswer Answer(const TCodeUnit* path, TCodeUnit* buffer, unsigned int size) {
    const TStringCore asked(path);
    const auto found = m_forms.find(UnitsOf(asked));
    if (buffer == nullptr) m_asked.push_back(Narrow(asked));
    if (found == m_forms.end()) return {0, m_saysMissing};
    const std::u16string form = buffer != nullptr ? found->second + m_grows : found->second;
    if (size <= form.size()) return {static_cast<unsigned int>(form.size() + 1), false};
    std::copy(form.begin(), form.end(), buffer);
    buffer[form.size()] = 0;
    return {static_cast<unsigned int>(form.size()), false};
  }

  Forms m_forms;
  std::vector<std::string> m_asked;
};

using Asked = std::vector<std::string>;

TEST(NativePath, IsAskedForWithThePrefixAndGivenWithoutIt) {
  MadeUpSystem system(Forms{{u"\\\\?\\c:\\progra~1", u"\\\\?\\C:\\Program Files"}});
  EXPECT_EQ(system.Resolve(u"c:/progra~1"), "C:\\Program Files");
  EXPECT_EQ(system.Asked(), Asked{"\\\\?\\c:\\progra~1"});
}

TEST(NativePath, GetsThePrefixWhateverItsShape) {
  for (const TPathCore path : {u"", u"a", u"/a", u"c:a", u"//server/share", u"//?/c:/a", u"//?/UNC/s/t"}) {
    MadeUpSystem system;
    system.m_saysMissing = false;
    EXPECT_EQ(system.Resolve(path), Narrow(path.NativeString()));
    EXPECT_EQ(system.Asked(), Asked{"\\\\?\\" + Narrow(path.NativeString())});
  }
}

TEST(NativePath, IsExpandedAsFarAsItsAncestorsExist) {
  MadeUpSystem system(Forms{{u"\\\\?\\c:\\lo~1", u"\\\\?\\c:\\long name"}});
  EXPECT_EQ(system.Resolve(u"c:/lo~1/not/there"), "c:\\long name\\not\\there");
  EXPECT_EQ(system.Asked(), (Asked{"\\\\?\\c:\\lo~1\\not\\there", "\\\\?\\c:\\lo~1\\not", "\\\\?\\c:\\lo~1"}));
}

TEST(NativePath, IsExpandedFromItsRoot) {
  MadeUpSystem system(Forms{{u"\\\\?\\c:\\", u"\\\\?\\C:\\"}});
  EXPECT_EQ(system.Resolve(u"c:/not"), "C:\\not");
}

TEST(NativePath, TakesTheParentsOfItsShape) {
  MadeUpSystem system;
  EXPECT_EQ(system.Resolve(u"c:/a"), "c:\\a");
  EXPECT_EQ(system.Asked(), (Asked{"\\\\?\\c:\\a", "\\\\?\\c:\\", "\\\\?\\c:"}));
  MadeUpSystem relative;
  EXPECT_EQ(relative.Resolve(u"c:a"), "c:a");
  EXPECT_EQ(relative.Asked(), (Asked{"\\\\?\\c:a", "\\\\?\\c"}));
}

TEST(NativePath, IsPlainWhereAFailureSaysNothingOfWhatIsThere) {
  MadeUpSystem system(Forms{{u"\\\\?\\c:\\", u"\\\\?\\C:\\"}});
  system.m_saysMissing = false;
  EXPECT_EQ(system.Resolve(u"c:/a"), "c:\\a");
  EXPECT_EQ(system.Asked().size(), 1u);
}

TEST(NativePath, IsPlainWhereTheFormOutgrowsItsRoom) {
  MadeUpSystem system(Forms{{u"\\\\?\\c:\\a", u"\\\\?\\c:\\form"}});
  system.m_grows = u"s";
  EXPECT_EQ(system.Resolve(u"c:/a"), "c:\\forms") << "there is a unit to spare";
  system.m_grows = u"s by far";
  EXPECT_EQ(system.Resolve(u"c:/a"), "c:\\a");
}

TEST(NativePath, EndsAtANul) {
  MadeUpSystem system(Forms{{u"\\\\?\\c:\\a", std::u16string(u"\\\\?\\c:\\x\0y", 10)}});
  EXPECT_EQ(system.Resolve(u"c:/a"), "c:\\x");
}

// Each step is a loop's, not a call within a call.
TEST(NativePath, MayHaveAnyNumberOfParents) {
  constexpr int Names = 20000;
  int asked = 0;
  const AskForForm ask = [&](const TCodeUnit*, TCodeUnit*, unsigned int) {
    ++asked;
    return NativeFormAnswer{0, true};
  };
  const TPathCore path(u"c:" + TStringCore(u"/a").repeated(Names));
  EXPECT_EQ(NativePathByForm(path, ask), path.NativeString());
  EXPECT_EQ(asked, Names + 2);
}

}  // namespace
