// What does a digest cost, of a short message and of a long one? The system's own library stands beside as the measure.
#include <benchmark/benchmark.h>

#include <cstddef>
#include <string>
#include <vector>

#include "SideBySide.h"
#include "hash/ShaTransform.h"
#include "qilsys/sha2.h"
#include "support/PeerDigest.h"

namespace {

std::vector<unsigned char> Message(std::size_t length) {
  std::vector<unsigned char> message(length);
  for (std::size_t i = 0; i < length; ++i) message[i] = static_cast<unsigned char>(i * 31);
  return message;
}

std::string Raw(const sha2& digest) {
  int length = 0;
  const char* raw = digest.RawHash(length);
  return {raw, raw + length};
}

bool IsRight(benchmark::State& state, sha2::SHA_TYPE type, const std::vector<unsigned char>& message) {
  sha2 digest;
  digest.GetHash(type, message.data(), message.size());
  const bool right = Raw(digest) == qilsys::test::PeerDigest(type, message.data(), message.size());
  if (!right) state.SkipWithError("the digest is wrong");
  return right;
}

void BesidePeer(benchmark::State& state, sha2::SHA_TYPE type) {
  const auto message = Message(static_cast<std::size_t>(state.range(0)));
  if (!IsRight(state, type, message)) return;
  sha2 digest;
  unsigned char peer[qilsys::test::MostDigestBytes];
  qilsys::benchmarks::SideBySide(
      state, [&] { benchmark::DoNotOptimize(digest.GetHash(type, message.data(), message.size()).data()); },
      [&] {
        qilsys::test::PeerDigest(type, message.data(), message.size(), peer);
        benchmark::DoNotOptimize(peer);
      });
}

void Form(benchmark::State& state, const qilsys::hash::ShaTransforms* transforms, sha2::SHA_TYPE type) {
  qilsys::hash::ChooseShaTransformsForTest(transforms);
  BesidePeer(state, type);
  qilsys::hash::ChooseShaTransformsForTest(nullptr);
}

void Register(sha2::SHA_TYPE type) {
  sha2 digest;
  digest.Init(type);
  const std::string name = digest.GetTypeString();
  const std::string beside = "sha2/" + name + "/beside " + qilsys::test::PeerName(type);
  benchmark::RegisterBenchmark(beside.c_str(), BesidePeer, type)->Arg(16)->Arg(256)->Arg(64 * 1024);
  for (const auto& transforms : qilsys::hash::AvailableShaTransforms()) {
    const std::string form = "forms/" + name + "/" + transforms.name;
    benchmark::RegisterBenchmark(form.c_str(), Form, &transforms, type)->Arg(64 * 1024);
  }
}

const bool g_registered = [] {
  for (const auto type : {sha2::SHA160, sha2::SHA224, sha2::SHA256, sha2::SHA384, sha2::SHA512}) Register(type);
  return true;
}();

}  // namespace
