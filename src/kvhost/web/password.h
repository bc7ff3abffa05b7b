// Passwords and secrets of the web client: salted PBKDF2-HMAC-SHA256 password hashes, and
// random tokens for session cookies, request tokens and one-time passwords.
#pragma once

#include <string>

namespace kvhost::web {

// The work factor of new hashes: OWASP's recommendation for PBKDF2-HMAC-SHA256.
inline constexpr int kDefaultHashIterations = 600000;

// "pbkdf2-sha256$<iterations>$<salt, hex>$<hash, hex>" with a fresh 16-byte salt.
std::string HashPassword(const std::string& password, int iterations = kDefaultHashIterations);

// True when the password gives the stored hash. A malformed stored text never matches.
// The comparison takes the same time wherever the hashes differ.
bool VerifyPassword(const std::string& password, const std::string& stored);

// `bytes` bytes from the system's secure random source, as lower-case hex.
std::string RandomHex(size_t bytes);

// A password for a person to type once: 16 characters of letters and digits without the
// ones that look alike (0/O, 1/l/I).
std::string RandomPassword();

// Compares two texts in a time that does not depend on where they differ.
bool SameSecret(const std::string& a, const std::string& b);

}  // namespace kvhost::web
