// TLS for `mrvk serve` beyond the loopback: which addresses need it, and the self-signed
// certificate the server makes for itself when it was given none.
#pragma once

#include <string>

#include "kvhost/status.h"

namespace kvhost::web {

// True for the addresses only this machine reaches: 127.x.x.x, ::1 and "localhost".
bool IsLoopback(const std::string& address);

// The certificate and key (PEM) in folder: server.crt and server.key, made on the first call
// (an EC P-256 key, readable by the owner only, and a certificate signed by it for ten years,
// naming localhost, 127.0.0.1, this machine's name and bind when it is an address) and used
// as they are afterwards.
Status EnsureSelfSignedPair(const std::string& folder, const std::string& bind, std::string& cert,
                            std::string& key);

}  // namespace kvhost::web
