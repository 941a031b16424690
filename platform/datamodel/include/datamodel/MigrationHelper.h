#pragma once

namespace Kx {

enum EMigrationStatus : int {
    eMigrationFailed = 0,
    eMigrationDone = 1,
    eMigrationDeferred = 2,
};

// State a type may keep while the data model migrates one of its values from an older member
// set. The value types of this library never need one.
class MigrationHelper {
public:
    virtual ~MigrationHelper() = default;
};

} // namespace Kx
