// Paths, their walks, and the files of modules.
#include <filesystem>
#include <ostream>
#include <streambuf>
#include <utility>

#include "qilsys/TFormatStringCore.h"
#include "qilsys/TPathCore.h"
#include "qilsys/TPathFilesystem.h"
#include "qilsys/TSystem.h"
#include "sweep/Observed.h"
#include "sweep/Operation.h"

namespace qilsys::test::sweep {
namespace {

using Text = TStringCore;

/// Takes everything, and keeps nothing.
class Sink : public std::streambuf {
 protected:
  int_type overflow(int_type unit) override { return traits_type::not_eof(unit); }
};

/// A path in one of the shapes, arguments for its operations, and room for what these give.
struct Paths {
  explicit Paths(Shape shape) {
    const bool isShort = shape == Shape::Inline;
    const Text own = isShort ? Text(u"//h/c$/a.txt") : Text(u"//some server/c$/some folder/a name.txt");
    path = TPathCore(Text(own.constData(), own.length()));
    if (shape == Shape::SharedBlock) peer = path;
    walked = isShort ? TPathCore(u"c:/a/b") : TPathCore(u"a name that needs a block/another name that needs a block");
    native = isShort ? Text(u"c:\\a\\") : Text(u"c:\\some folder\\a name that needs a block\\");
    foreign = L"some folder\\a name that is longer than the room inside a foreign text\\";
    file = std::filesystem::path(u"/a folder that needs the heap/with a name that does so too");
  }
  std::string Observe() const {
    Observed seen;
    for (const TPathCore* one : {&path, &peer, &walked, &other, &made}) seen.Add(one->GenericString());
    seen.Add(native).AddAll(elements).Add(text).AddAll(list).Add(number).Add(flag);
    return seen.Add(file.u16string()).Add(madeFile.u16string()).Bytes();
  }

  TPathCore path;
  TPathCore peer;
  TPathCore walked;
  TPathCore other = TPathCore(u"another folder that needs a block/and a name in it");
  Text native;
  std::wstring foreign;
  std::filesystem::path file;
  std::vector<Text> elements{u"c:", u"/", u"a folder that needs a block\\", u"a name that needs one too"};

  TPathCore made;
  std::filesystem::path madeFile;
  Text text;
  std::vector<Text> list;
  std::size_t number = 0;
  bool flag = false;
};

constexpr Leave ListOfElements{Raises::Either, Left::Unchanged, "its result is a container of the standard library"};
constexpr Leave FromSystem{Raises::Either, Left::Unchanged, "names come from the system as std::string", Result::Same,
                           When::Sometimes};
constexpr Leave PathOfLibrary{Raises::Either, Left::Unchanged, "paths of the standard library are its own texts",
                              Result::Same, When::Sometimes};
constexpr Leave RecordAndLists{Raises::Either, Left::Unchanged, "messages are lists of the standard library"};

constexpr Row<Paths> Making[] = {
    {"Path_FromText", [](Paths& p) { p.made = TPathCore(p.native); }},
    {"Path_FromUnits", [](Paths& p) { p.made = TPathCore(p.native.constData()); }},
    {"Path_FromForeign", [](Paths& p) { p.made = TPathCore(p.foreign.c_str()); }},
    {"Path_fromWindows", [](Paths& p) { p.made = TPathCore::fromWindows(p.native); }},
    {"Path_fromVector", [](Paths& p) { p.made = TPathCore::fromVector(p.elements); }},
    {"Path_Copy", [](Paths& p) { p.made = TPathCore(p.path); }},
    {"Path_Assign", [](Paths& p) { p.path.Assign(p.other); }},
    {"Path_Clear", [](Paths& p) { p.path.Clear(); }},
    {"Path_Swap", [](Paths& p) { p.path.Swap(p.other); }},
    {"Path_GenericString", [](Paths& p) { p.text = p.path.GenericString(); }},
    {"Path_NativeString", [](Paths& p) { p.text = p.path.NativeString(); }},
    {"Path_AsText", [](Paths& p) { p.text = p.path; }},
    {"Path_NativeLongPath", [](Paths& p) { p.text = p.path.NativeLongPath(); }},
    {"Path_NativeShortPath", [](Paths& p) { p.text = p.path.NativeShortPath(); }},
    {"Path_Output",
     [](Paths& p) {
       Sink sink;
       std::ostream(&sink) << p.path;
     },
     {Raises::Standard, Left::Unchanged, "its UTF-8 is a std::string"}},
    {"Path_Format",
     [](Paths& p) { p.text = TFormatStringCore(u"%1 and %2").arg(p.path, p.native).result(); },
     {Raises::Either, Left::Unchanged, "markers and parameters are vectors"}},
};

constexpr Row<Paths> Comparing[] = {
    {"Path_Compare", [](Paths& p) { p.flag = p.path.Compare(p.other) < 0; }},
    {"Path_Equal", [](Paths& p) { p.flag = p.path == p.other; }},
    {"Path_Less", [](Paths& p) { p.flag = p.path < p.other; }},
    {"Path_EqualText", [](Paths& p) { p.flag = p.path == p.native; }},
    {"Path_LessText", [](Paths& p) { p.flag = p.native < p.path; }},
    {"Path_Hash", [](Paths& p) { p.number = std::hash<TPathCore>()(p.path); }},
};

constexpr Row<Paths> Joining[] = {
    {"Path_Append", [](Paths& p) { p.path.Append(p.other); }},
    {"Path_AppendSelf", [](Paths& p) { p.path.Append(p.path); }},
    {"Path_Divide", [](Paths& p) { p.made = p.path / p.other; }},
    {"Path_Concat", [](Paths& p) { p.path.Concat(p.other); }},
    {"Path_Plus", [](Paths& p) { p.made = p.path + p.other; }},
    {"Path_PlusText", [](Paths& p) { p.made = p.path + p.native; }},
    {"Path_PlusUnits", [](Paths& p) { p.made = p.path + p.native.constData(); }},
    {"Path_PlusForeign", [](Paths& p) { p.made = p.path + p.foreign.c_str(); }},
    {"Path_PlusUnit", [](Paths& p) { p.made = p.path + u'x'; }},
    {"Path_PlusWide", [](Paths& p) { p.made = p.path + L'x'; }},
};

constexpr Row<Paths> Walking[] = {
    {"Path_Walk",
     [](Paths& p) {
       std::size_t units = 0;
       for (const Text& element : p.walked) units += element.size();
       p.number = units;
     }},
    {"Path_WalkStuck",
     [](Paths& p) {
       try {
         p.number = TPathCore(u"//a server that needs a block").size();
       } catch (const TPathCore::Exception&) {
         p.flag = true;
       }
     },
     RecordAndLists},
    {"Path_size", [](Paths& p) { p.number = p.walked.size(); }},
    {"Path_toVector", [](Paths& p) { p.list = p.walked.toVector(); }, ListOfElements},
    {"Path_front", [](Paths& p) { p.text = p.path.front(); }},
    {"Path_back",
     [](Paths& p) {
       try {
         p.text = p.walked.back();
       } catch (const TPathCore::Exception&) {
         p.flag = true;
       }
     },
     RecordAndLists},
    {"Path_Exception",
     [](Paths& p) {
       const TPathCore::Exception exception(p.native, TError::ErrorInfo::NoError(), true);
       p.text = exception.GetMessagesFront();
     },
     {Raises::Standard, Left::Unchanged, RecordAndLists.reason}},
};

constexpr Row<Paths> Asking[] = {
    {"Path_RootName", [](Paths& p) { p.made = p.path.RootName(); }},
    {"Path_RootDirectory", [](Paths& p) { p.made = p.path.RootDirectory(); }},
    {"Path_RootPath", [](Paths& p) { p.made = p.path.RootPath(); }},
    {"Path_Filename", [](Paths& p) { p.made = p.other.Filename(); }},
    {"Path_Stem", [](Paths& p) { p.made = p.other.Stem(); }},
    {"Path_Extension", [](Paths& p) { p.text = p.path.Extension(); }},
    {"Path_Parent", [](Paths& p) { p.made = p.path.Parent(); }},
    {"Path_HasParentPath", [](Paths& p) { p.flag = p.path.HasParentPath(); }},
    {"Path_IsDots", [](Paths& p) { p.flag = p.other.IsDots(); }},
    {"Path_UNCShareName", [](Paths& p) { p.text = p.path.UNCShareName(); }},
    {"Path_UNCObjectName", [](Paths& p) { p.text = p.path.UNCObjectName(); }},
    {"Path_AdminShareDriveLetter", [](Paths& p) { p.number = p.path.AdminShareDriveLetter(); }},
    {"Path_HasParts",
     [](Paths& p) {
       p.number = static_cast<std::size_t>(p.path.HasRootName() + p.path.HasRootDirectory() + p.path.HasRootPath() +
                                           p.path.HasFilename() + p.path.HasStem() + p.path.HasExtension());
       p.number += static_cast<std::size_t>(p.path.IsAbsolute() + p.path.IsRelative() + p.path.IsUNC() +
                                            p.path.IsExtendedLength() + p.path.HasUNCObjectName());
     }},
};

constexpr Row<Paths> Changing[] = {
    {"Path_RemoveFilename", [](Paths& p) { p.path.RemoveFilename(); }},
    {"Path_RemoveExtension", [](Paths& p) { p.path.RemoveExtension(); }},
    {"Path_ReplaceExtension", [](Paths& p) { p.path.ReplaceExtension(u"an extension that needs a block"); }},
};

constexpr Row<Paths> Elsewhere[] = {
    {"ToFilesystemPath", [](Paths& p) { p.madeFile = ToFilesystemPath(p.other); }, PathOfLibrary},
    {"FromFilesystemPath", [](Paths& p) { p.made = FromFilesystemPath(p.file); }, PathOfLibrary},
    {"FromFilesystemPath_Refused",
     [](Paths& p) {
       try {
         FromFilesystemPath(std::filesystem::path(u"/a folder that needs the heap/"));
       } catch (const TPathCore::Exception&) {
         p.flag = true;
       }
     },
     {Raises::Either, Left::Unchanged, PathOfLibrary.reason}},
    {"ExecutablePath", [](Paths& p) { p.flag = !TSystem::ExecutablePath().IsEmpty(); }, FromSystem},
    {"ExecutableFilename", [](Paths& p) { p.flag = !TSystem::ExecutableFilename().IsEmpty(); }, FromSystem},
    {"ModuleFilename", [](Paths& p) { p.flag = !TSystem::ModuleFilename(&Elsewhere).IsEmpty(); }, FromSystem},
    {"ModuleDirectory", [](Paths& p) { p.flag = !TSystem::ModuleDirectory(&Elsewhere).IsEmpty(); }, FromSystem},
    {"ModulePath", [](Paths& p) { p.flag = TSystem::ModulePath(TPathCore(u"a module that no program has")).IsEmpty(); },
     FromSystem},
};

}  // namespace

void AddPaths(std::vector<Operation>& operations) {
  AddRows<Paths>(operations, Making);
  AddRows<Paths>(operations, Comparing);
  AddRows<Paths>(operations, Joining);
  AddRows<Paths>(operations, Walking);
  AddRows<Paths>(operations, Asking);
  AddRows<Paths>(operations, Changing);
  AddRows<Paths>(operations, Elsewhere);
}

}  // namespace qilsys::test::sweep
