#include "kvhost/web/tls.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <openssl/bn.h>
#include <openssl/ec.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <memory>

#include "kvhost/lib/atomic_file.h"

namespace kvhost::web {
namespace {

namespace fs = std::filesystem;

template <typename T, void (*Free)(T*)>
struct Deleter {
  void operator()(T* p) const { Free(p); }
};
using Key = std::unique_ptr<EVP_PKEY, Deleter<EVP_PKEY, EVP_PKEY_free>>;
using Cert = std::unique_ptr<X509, Deleter<X509, X509_free>>;
using Bio = std::unique_ptr<BIO, Deleter<BIO, BIO_free_all>>;

constexpr long kTenYears = 10L * 365 * 24 * 60 * 60;

bool IsAddress(const std::string& text) {
  unsigned char buffer[sizeof(struct in6_addr)];
  return inet_pton(AF_INET, text.c_str(), buffer) == 1 ||
         inet_pton(AF_INET6, text.c_str(), buffer) == 1;
}

std::string BioText(BIO* bio) {
  char* data = nullptr;
  const long size = BIO_get_mem_data(bio, &data);
  return size > 0 ? std::string(data, static_cast<size_t>(size)) : std::string();
}

// Writes a file only its owner may read.
bool WritePrivate(const std::string& path, const std::string& text) {
  const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  if (fd < 0) return false;
  bool ok = ::fchmod(fd, 0600) == 0;
  for (size_t done = 0; ok && done < text.size();) {
    const ssize_t n = ::write(fd, text.data() + done, text.size() - done);
    if (n <= 0)
      ok = false;
    else
      done += static_cast<size_t>(n);
  }
  return ::close(fd) == 0 && ok;
}

Status MakePair(const std::string& bind, const std::string& cert_path,
                const std::string& key_path) {
  Key key(EVP_EC_gen("P-256"));
  Cert cert(X509_new());
  if (!key || !cert) return Status::Error("cannot make a TLS key");
  std::string names = "DNS:localhost,IP:127.0.0.1";
  char host[256] = {};
  if (::gethostname(host, sizeof(host) - 1) == 0 && host[0] && std::string(host) != "localhost")
    names += ",DNS:" + std::string(host);
  if (IsAddress(bind) && bind != "127.0.0.1" && bind != "0.0.0.0" && bind != "::")
    names += ",IP:" + bind;
  std::unique_ptr<BIGNUM, Deleter<BIGNUM, BN_free>> serial(BN_new());
  X509_NAME* subject = X509_get_subject_name(cert.get());
  X509V3_CTX ctx;
  X509V3_set_ctx_nodb(&ctx);
  X509V3_set_ctx(&ctx, cert.get(), cert.get(), nullptr, nullptr, 0);
  bool ok =
      serial && BN_rand(serial.get(), 64, BN_RAND_TOP_ANY, BN_RAND_BOTTOM_ANY) == 1 &&
      BN_to_ASN1_INTEGER(serial.get(), X509_get_serialNumber(cert.get())) &&
      X509_set_version(cert.get(), 2) == 1 && X509_gmtime_adj(X509_getm_notBefore(cert.get()), 0) &&
      X509_gmtime_adj(X509_getm_notAfter(cert.get()), kTenYears) &&
      X509_set_pubkey(cert.get(), key.get()) == 1 &&
      X509_NAME_add_entry_by_txt(subject, "CN", MBSTRING_ASC,
                                 reinterpret_cast<const unsigned char*>("mrvk"), -1, -1, 0) == 1 &&
      X509_set_issuer_name(cert.get(), subject) == 1;
  if (ok) {
    X509_EXTENSION* ext =
        X509V3_EXT_conf_nid(nullptr, &ctx, NID_subject_alt_name, const_cast<char*>(names.c_str()));
    ok = ext && X509_add_ext(cert.get(), ext, -1) == 1;
    X509_EXTENSION_free(ext);
  }
  ok = ok && X509_sign(cert.get(), key.get(), EVP_sha256()) > 0;
  Bio cert_pem(BIO_new(BIO_s_mem()));
  Bio key_pem(BIO_new(BIO_s_mem()));
  ok = ok && cert_pem && key_pem && PEM_write_bio_X509(cert_pem.get(), cert.get()) == 1 &&
       PEM_write_bio_PrivateKey(key_pem.get(), key.get(), nullptr, nullptr, 0, nullptr, nullptr) ==
           1;
  if (!ok) return Status::Error("cannot make a self-signed TLS certificate");
  if (!WritePrivate(key_path, BioText(key_pem.get())) ||
      !ReplaceFile(cert_path, BioText(cert_pem.get())))
    return Status::Error("cannot write the TLS certificate and key in " +
                         fs::path(cert_path).parent_path().string());
  return Status::Ok();
}

}  // namespace

bool IsLoopback(const std::string& address) {
  if (address == "localhost" || address == "::1") return true;
  struct in_addr v4 {};
  return inet_pton(AF_INET, address.c_str(), &v4) == 1 && (ntohl(v4.s_addr) >> 24) == 127;
}

Status EnsureSelfSignedPair(const std::string& folder, const std::string& bind, std::string& cert,
                            std::string& key) {
  cert = (fs::path(folder) / "server.crt").string();
  key = (fs::path(folder) / "server.key").string();
  std::error_code ec;
  if (fs::is_regular_file(cert, ec) && fs::is_regular_file(key, ec)) return Status::Ok();
  fs::create_directories(folder, ec);
  if (ec) return Status::Error("cannot make the folder " + folder + ": " + ec.message());
  return MakePair(bind, cert, key);
}

}  // namespace kvhost::web
