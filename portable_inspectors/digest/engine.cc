// OpenSSL behind the engine's interface. A library of its own, see `digest_engine.h`.
#include <openssl/evp.h>

#include "portable_inspectors/digest_engine.h"

namespace {

struct FreeContext {
  void operator()(EVP_MD_CTX* context) const { EVP_MD_CTX_free(context); }
};
struct FreeAlgorithm {
  void operator()(EVP_MD* algorithm) const { EVP_MD_free(algorithm); }
};

char const* NameOf(DigestAlgorithm algorithm) {
  switch (algorithm) {
    case DigestAlgorithm::kMd5:
      return "MD5";
    case DigestAlgorithm::kSha1:
      return "SHA1";
    case DigestAlgorithm::kSha256:
      return "SHA256";
  }
  return "";
}

class OpenSslDigest final : public Digest {
 public:
  explicit OpenSslDigest(char const* name)
      : name_(name), algorithm_(EVP_MD_fetch(nullptr, name, nullptr)), context_(EVP_MD_CTX_new()) {
    Require(algorithm_ != nullptr && context_ != nullptr &&
            EVP_DigestInit_ex2(context_.get(), algorithm_.get(), nullptr) == 1);
  }

  void Add(void const* bytes, std::size_t size) override {
    Require(EVP_DigestUpdate(context_.get(), bytes, size) == 1);
  }

  std::string Finish() override {
    unsigned char bytes[EVP_MAX_MD_SIZE];
    unsigned size = 0;
    Require(EVP_DigestFinal_ex(context_.get(), bytes, &size) == 1);
    return {reinterpret_cast<char const*>(bytes), size};
  }

 private:
  // An algorithm may be switched off in the machine's configuration.
  void Require(bool success) const {
    if (!success) throw DigestsUnavailable(std::string(name_) + " is not available");
  }

  char const* name_;
  std::unique_ptr<EVP_MD, FreeAlgorithm> algorithm_;
  std::unique_ptr<EVP_MD_CTX, FreeContext> context_;
};

class OpenSslEngine final : public DigestEngine {
 public:
  std::unique_ptr<Digest> Start(DigestAlgorithm algorithm) override {
    return std::make_unique<OpenSslDigest>(NameOf(algorithm));
  }
};

}  // namespace

extern "C" GATOTU_API DigestEngine* GatotuDigestEngine() {
  static OpenSslEngine engine;
  return &engine;
}
