#pragma once

#include "Host/Library/Database.h"
#include "Host/Library/Result.h"

namespace quaverly::library {

/// Brings an opened database to the catalogue's form: makes the tables of a new one, and refuses one that a
/// newer version has written or that is damaged.
MaybeFailure prepareCatalogue(Database& database);

}  // namespace quaverly::library
