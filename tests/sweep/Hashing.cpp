// Hashes, digests, and the entry points of the heap themselves.
#include <new>
#include <stdexcept>

#include "qilsys/THash.h"
#include "qilsys/TMemory.h"
#include "qilsys/sha2.h"
#include "sweep/Observed.h"
#include "sweep/Operation.h"

namespace qilsys::test::sweep {
namespace {

constexpr unsigned char Message[] =
    "abc and a few bytes more than one block of a digest has, so that one is transformed";

/// Two computations under way, and one that has ended.
struct Digests {
  explicit Digests(Shape) {
    sha256.Init(sha2::SHA256);
    sha256.Update(Message, 3);
    sha512.Init(sha2::SHA512);
    sha512.Update(Message, sizeof Message);
    finished.GetHash(sha2::SHA160, Message, 20);
  }
  std::string Observe() const {
    Observed seen;
    for (const sha2* each : {&sha256, &sha512, &finished, &result}) AddDigest(seen, *each);
    return seen.Add(number).Bytes();
  }
  static void AddDigest(Observed& seen, const sha2& digest) {
    seen.Add(digest.GetEnumType());
    sha2 ended(digest);
    if (digest.GetEnumType() == 0) return;
    try {
      seen.Add(digest.StringHash());
    } catch (const std::runtime_error&) {
      ended.End();
      seen.Add(0).Add(ended.StringHash());
    }
  }

  sha2 sha256;
  sha2 sha512;
  sha2 finished;
  sha2 result;
  unsigned long long number = 0;
};

constexpr Leave DigestText{Raises::Standard, Left::Unchanged, "the digest's text is a std::string by its interface"};

constexpr Row<Digests> Digesting[] = {
    {"sha2_Init", [](Digests& d) { d.finished.Init(sha2::SHA384); }},
    {"sha2_Update", [](Digests& d) { d.sha256.Update(Message, sizeof Message); }},
    {"sha2_End", [](Digests& d) { d.sha256.End(); }, DigestText},
    {"sha2_EndOf512", [](Digests& d) { d.sha512.End(); }, DigestText},
    {"sha2_GetHash",
     [](Digests& d) { d.number = d.result.GetHash(sha2::SHA224, Message, 30).size(); },
     {Raises::Standard, Left::Begun, "it is Init, Update and End, of which the last may fail"}},
    {"sha2_Copy", [](Digests& d) { d.number = sha2(d.finished).StringHash().size(); }, DigestText},
    {"sha2_Assign", [](Digests& d) { d.sha512 = d.finished; }, DigestText},
    {"sha2_HexHash", [](Digests& d) { d.number = static_cast<unsigned char>(*d.finished.HexHash()); }},
    {"sha2_GetTypeString", [](Digests& d) { d.number = static_cast<unsigned char>(*d.sha256.GetTypeString()); }},
};

constexpr Row<Digests> HashingBytes[] = {
    {"THash32", [](Digests& d) { d.number = THash32(Message, sizeof Message, 1); }},
    {"THash64", [](Digests& d) { d.number = THash64(Message, sizeof Message, 1); }},
    {"THash", [](Digests& d) { d.number = THash(Message, sizeof Message); }},
    {"THash128", [](Digests& d) { d.number = THash128(Message, sizeof Message, 1, 2).first; }},
    {"THashCombine32", [](Digests& d) { d.number = THashCombine32(1, 2); }},
    {"THashCombine", [](Digests& d) { d.number = THashCombine(1, 2); }},
};

/// A block, which the entry points may not lose.
struct Block {
  explicit Block(Shape) : data(static_cast<unsigned char*>(TMalloc(100))) { *data = 7; }
  ~Block() { TFree(data); }
  Block(const Block&) = delete;
  Block& operator=(const Block&) = delete;
  std::string Observe() const { return Observed().Add(*data).Add(given).Bytes(); }

  unsigned char* data;
  bool given = false;
};

constexpr Leave Null{Raises::Nothing, Left::Unchanged, "as malloc does, it gives null", Result::Another};

constexpr Row<Block> Blocks[] = {
    {"TMalloc",
     [](Block& b) {
       void* block = TMalloc(10);
       b.given = block != nullptr;
       TFree(block);
     },
     Null},
    {"TCalloc",
     [](Block& b) {
       void* block = TCalloc(10, 10);
       b.given = block != nullptr;
       TFree(block);
     },
     Null},
    {"TRealloc",
     [](Block& b) {
       void* moved = TRealloc(b.data, 10000);
       b.given = moved != nullptr;
       if (moved != nullptr) b.data = static_cast<unsigned char*>(moved);
     },
     Null},
    {"OperatorNew",
     [](Block& b) {
       void* block = ::operator new(10);
       b.given = true;
       ::operator delete(block);
     },
     {Raises::Standard, Left::Unchanged, "as the language has it"}},
    {"OperatorNewArray",
     [](Block& b) {
       void* block = ::operator new[](10);
       b.given = true;
       ::operator delete[](block);
     },
     {Raises::Standard, Left::Unchanged, "as the language has it"}},
    {"OperatorNewNothrow",
     [](Block& b) {
       void* block = ::operator new(10, std::nothrow);
       b.given = block != nullptr;
       ::operator delete(block, std::nothrow);
     },
     Null},
};

}  // namespace

void AddHashing(std::vector<Operation>& operations) {
  AddRows<Digests>(operations, Digesting);
  AddRows<Digests>(operations, HashingBytes);
  AddRows<Block>(operations, Blocks);
}

}  // namespace qilsys::test::sweep
