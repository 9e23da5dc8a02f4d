// What does a digest cost, of a short message and of a long one? The system's own library stands beside as the
// measure. On a machine that does other work too, take the least of many repetitions.
#include <benchmark/benchmark.h>

#include <cstddef>
#include <string>
#include <vector>

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

void Ours(benchmark::State& state, const qilsys::hash::ShaTransforms* transforms, sha2::SHA_TYPE type) {
  qilsys::hash::ChooseShaTransformsForTest(transforms);
  const auto message = Message(static_cast<std::size_t>(state.range(0)));
  sha2 digest;
  digest.GetHash(type, message.data(), message.size());
  if (Raw(digest) != qilsys::test::PeerDigest(type, message.data(), message.size())) {
    state.SkipWithError("the digest is wrong");
  }
  for (auto _ : state) benchmark::DoNotOptimize(digest.GetHash(type, message.data(), message.size()).data());
  state.SetBytesProcessed(state.iterations() * state.range(0));
  qilsys::hash::ChooseShaTransformsForTest(nullptr);
}

void Peer(benchmark::State& state, sha2::SHA_TYPE type) {
  const auto message = Message(static_cast<std::size_t>(state.range(0)));
  unsigned char digest[qilsys::test::MostDigestBytes];
  for (auto _ : state) {
    qilsys::test::PeerDigest(type, message.data(), message.size(), digest);
    benchmark::DoNotOptimize(digest);
  }
  state.SetBytesProcessed(state.iterations() * state.range(0));
}

void Register(sha2::SHA_TYPE type) {
  sha2 digest;
  digest.Init(type);
  const std::string name = digest.GetTypeString();
  const auto sizes = [](benchmark::internal::Benchmark* b) { b->Arg(16)->Arg(256)->Arg(64 * 1024); };
  sizes(benchmark::RegisterBenchmark((qilsys::test::PeerName(type) + ("/" + name)).c_str(), Peer, type));
  sizes(benchmark::RegisterBenchmark(("sha2/" + name).c_str(), Ours, nullptr, type));
  for (const auto& transforms : qilsys::hash::AvailableShaTransforms()) {
    const std::string full = "forms/" + name + "/" + transforms.name;
    benchmark::RegisterBenchmark(full.c_str(), Ours, &transforms, type)->Arg(64 * 1024);
  }
}

const bool g_registered = [] {
  for (const auto type : {sha2::SHA160, sha2::SHA224, sha2::SHA256, sha2::SHA384, sha2::SHA512}) Register(type);
  return true;
}();

}  // namespace
