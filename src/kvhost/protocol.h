// The screen protocol: one JSON request in, one JSON answer out. `mrvk drive` speaks it on
// stdin/stdout and the web client over HTTP, so it is the one way to drive any screen from
// outside C++.
//
// The module's code runs on a worker thread of the driver. When it shows a message box or an
// input box, the worker stops there and the answer to the request carries `pending`; the next
// request must then be {"op":"answer","value":...}, which resumes the worker.
#pragma once

#include <memory>
#include <nlohmann/json.hpp>
#include <string>

#include "mrvk/frame/variant.h"

namespace kvhost {

class ProtocolDriver {
 public:
  ProtocolDriver();
  ~ProtocolDriver();
  ProtocolDriver(const ProtocolDriver&) = delete;
  ProtocolDriver& operator=(const ProtocolDriver&) = delete;

  // Handles one request line and returns the answer line (without a newline). Never throws:
  // malformed or out-of-order requests get {"ok":false,"error":...} and change nothing.
  std::string HandleLine(const std::string& line);
  nlohmann::json Handle(const nlohmann::json& request);

 private:
  class Impl;
  std::unique_ptr<Impl> impl_;
};

// The limits of one request: its size, and how deep arrays and objects nest in it (whatever
// walks a value recursively would otherwise run out of stack on a request nested deeply
// enough, and take the server down for everybody).
inline constexpr size_t kMaxRequestBytes = 1 << 20;
inline constexpr int kMaxRequestDepth = 64;

// Parses one request within those limits; false with the reason in error. The depth is
// checked on the text before anything is built.
bool ParseRequest(const std::string& text, nlohmann::json& out, std::string& error);

// Variant <-> JSON: Empty and Null are null, dates "yyyy-mm-dd", arrays nested JSON arrays.
nlohmann::json VariantToJson(const mrvk::Variant& v);
// A JSON value as a Variant; nested arrays must be rectangular. False with error set when not.
bool JsonToVariant(const nlohmann::json& j, mrvk::Variant& out, std::string& error);

}  // namespace kvhost
