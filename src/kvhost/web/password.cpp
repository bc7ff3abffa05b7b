#include "kvhost/web/password.h"

#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/rand.h>

#include <algorithm>
#include <semaphore>
#include <stdexcept>
#include <thread>
#include <vector>

namespace kvhost::web {
namespace {

constexpr const char* kScheme = "pbkdf2-sha256";
constexpr size_t kSaltBytes = 16;
constexpr size_t kHashBytes = 32;
// Stored hashes with fewer rounds than this are refused as malformed, more than the maximum
// as a way to stall the server.
constexpr long kMinIterations = 1000;
constexpr long kMaxIterations = 10000000;

std::vector<unsigned char> RandomBytes(size_t n) {
  std::vector<unsigned char> out(n);
  if (n > 0 && RAND_bytes(out.data(), static_cast<int>(n)) != 1)
    throw std::runtime_error("the secure random source failed");
  return out;
}

std::string ToHex(const std::vector<unsigned char>& bytes) {
  static const char* digits = "0123456789abcdef";
  std::string out;
  out.reserve(bytes.size() * 2);
  for (unsigned char b : bytes) {
    out.push_back(digits[b >> 4]);
    out.push_back(digits[b & 15]);
  }
  return out;
}

bool FromHex(const std::string& hex, std::vector<unsigned char>& out) {
  if (hex.size() % 2 != 0) return false;
  auto nibble = [](char c) -> int {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
  };
  out.clear();
  for (size_t i = 0; i < hex.size(); i += 2) {
    const int hi = nibble(hex[i]), lo = nibble(hex[i + 1]);
    if (hi < 0 || lo < 0) return false;
    out.push_back(static_cast<unsigned char>(hi * 16 + lo));
  }
  return true;
}

// A hash takes a core for a quarter of a second: at most one hash per core runs at a time,
// so a burst of sign-ins waits its turn instead of starving every other request.
std::counting_semaphore<>& HashSlots() {
  static std::counting_semaphore<> slots(std::max<std::ptrdiff_t>(
      1, static_cast<std::ptrdiff_t>(std::thread::hardware_concurrency())));
  return slots;
}

std::vector<unsigned char> Derive(const std::string& password,
                                  const std::vector<unsigned char>& salt, int iterations,
                                  size_t length) {
  std::vector<unsigned char> out(length);
  HashSlots().acquire();
  struct Release {
    ~Release() { HashSlots().release(); }
  } release;
  if (PKCS5_PBKDF2_HMAC(password.data(), static_cast<int>(password.size()), salt.data(),
                        static_cast<int>(salt.size()), iterations, EVP_sha256(),
                        static_cast<int>(length), out.data()) != 1)
    throw std::runtime_error("password hashing failed");
  return out;
}

}  // namespace

std::string HashPassword(const std::string& password, int iterations) {
  const auto salt = RandomBytes(kSaltBytes);
  return std::string(kScheme) + "$" + std::to_string(iterations) + "$" + ToHex(salt) + "$" +
         ToHex(Derive(password, salt, iterations, kHashBytes));
}

bool VerifyPassword(const std::string& password, const std::string& stored) {
  // scheme$iterations$salt$hash
  std::vector<std::string> parts;
  size_t start = 0;
  while (true) {
    const size_t bar = stored.find('$', start);
    parts.push_back(stored.substr(start, bar == std::string::npos ? bar : bar - start));
    if (bar == std::string::npos) break;
    start = bar + 1;
  }
  if (parts.size() != 4 || parts[0] != kScheme) return false;
  if (parts[1].empty() || parts[1].size() > 8 ||
      parts[1].find_first_not_of("0123456789") != std::string::npos)
    return false;
  const long iterations = std::stol(parts[1]);
  if (iterations < kMinIterations || iterations > kMaxIterations) return false;
  std::vector<unsigned char> salt, expected;
  if (!FromHex(parts[2], salt) || !FromHex(parts[3], expected) || salt.empty() || expected.empty())
    return false;
  const auto got = Derive(password, salt, static_cast<int>(iterations), expected.size());
  return CRYPTO_memcmp(got.data(), expected.data(), expected.size()) == 0;
}

std::string RandomHex(size_t bytes) { return ToHex(RandomBytes(bytes)); }

std::string RandomPassword() {
  static const std::string alphabet = "ABCDEFGHJKLMNPQRSTUVWXYZabcdefghijkmnpqrstuvwxyz23456789";
  constexpr size_t kLength = 16;
  std::string out;
  // Rejection sampling keeps every character equally likely.
  const unsigned limit = 256 - 256 % alphabet.size();
  while (out.size() < kLength) {
    for (unsigned char b : RandomBytes(kLength)) {
      if (b >= limit || out.size() == kLength) continue;
      out.push_back(alphabet[b % alphabet.size()]);
    }
  }
  return out;
}

bool SameSecret(const std::string& a, const std::string& b) {
  if (a.size() != b.size()) return false;
  return CRYPTO_memcmp(a.data(), b.data(), a.size()) == 0;
}

}  // namespace kvhost::web
