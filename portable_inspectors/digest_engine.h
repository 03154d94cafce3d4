// Digests of bytes. Their engine is a library of its own that is loaded by the first digest: it
// costs more to load than most questions take.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <utility>

#include "evaluator/plugin/exceptions.h"

// The engine is missing from the installation, or refuses the algorithm; `what()` says which.
class GATOTU_API DigestsUnavailable : public DebuggableException {
 public:
  explicit DigestsUnavailable(std::string reason) : reason_(std::move(reason)) {}
  char const* what() const noexcept override { return reason_.c_str(); }

 private:
  std::string reason_;
};

enum class DigestAlgorithm { kMd5, kSha1, kSha256 };

// One digest on its way.
class Digest {
 public:
  virtual ~Digest() = default;
  virtual void Add(void const* bytes, std::size_t size) = 0;
  // The digest's bytes; nothing can be added any more.
  virtual std::string Finish() = 0;
};

class DigestEngine {
 public:
  // Throws `DigestsUnavailable`, as a `Digest` does.
  virtual std::unique_ptr<Digest> Start(DigestAlgorithm algorithm) = 0;

 protected:
  ~DigestEngine() = default;
};

// Of this process; loads the engine when first called. Not for two threads at once, like every
// inspector.
GATOTU_API DigestEngine& TheDigestEngine();

// What the engine's library offers, under the name `kDigestEngineEntry`.
using DigestEngineEntry = DigestEngine* (*)();
inline constexpr char const* kDigestEngineEntry = "GatotuDigestEngine";
