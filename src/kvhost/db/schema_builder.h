// Creates or upgrades the schema of a database: every table, missing columns of tables that
// exist, indexes, the engine's Jet functions, key sources and seed rows. Idempotent: running
// it on an up-to-date database changes nothing.
#pragma once

#include "kvhost/db/connection.h"
#include "kvhost/status.h"

namespace kvhost::db {

// On success the database holds the whole schema. On failure returns the first error; what
// ran before it stays (each step is itself idempotent, so running again completes it).
Status CreateSchema(Connection& conn);

}  // namespace kvhost::db
