// A small sheet used by host and protocol tests: it asks questions through message and input
// boxes, raises events and writes to the database, so that the host's call order, the UI
// port and the protocol's pending boxes can be exercised before the real sheets exist.
#pragma once

#include "mrvk/frame/host_contract.h"

namespace kvtest {

// Registers the class "ProbeSheet" (once; safe to call again).
void RegisterProbeSheet();

}  // namespace kvtest
