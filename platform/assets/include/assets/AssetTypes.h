#pragma once

#include <core/Strings.h>

#include <cmath>
#include <string>
#include <vector>

namespace telvarin::platform::assets {

using core::UTF8String;
using core::WideString;

// The kinds of value an asset property holds. The numbers are stored in library files
// (property.type) and shared with every caller that reads properties by code, so they never change;
// 2, 5, 6, 7 and 8 are the codes of the scalar kinds that callers already switch on.
enum class EPropertyType : int {
    eUndefined = 0,
    eString = 2,
    eBoolean = 5,
    eInteger = 6,
    eDouble = 7,
    eColor = 8,
    eChoice = 9,        // an integer restricted to a list of labelled values
    eIntegerArray = 10,
    eDoubleArray = 11,
    eReference = 12,    // no value of its own: it only connects other assets ("Structural", "materialappearance")
};

// Linear RGB with alpha; components are not clamped (measured metal colours slightly exceed 1).
struct AssetColor {
    float r = 0.0F;
    float g = 0.0F;
    float b = 0.0F;
    float a = 1.0F;

    [[nodiscard]] bool operator==(const AssetColor&) const = default;
};

// Bounds of an integer or double property. Setters refuse a value outside [minimum, maximum] (both
// inclusive); values read from a library are taken as stored, so a caller that must trust them
// checks them itself. `increment` (0 for none) and `logarithmic` are hints for editors only.
struct NumericConstraint {
    bool hasMinimum = false;
    double minimum = 0.0;
    bool hasMaximum = false;
    double maximum = 0.0;
    double increment = 0.0;
    bool logarithmic = false;

    [[nodiscard]] bool admits(double value) const
    {
        return !std::isnan(value) && !(hasMinimum && value < minimum) && !(hasMaximum && value > maximum);
    }
    [[nodiscard]] bool operator==(const NumericConstraint&) const = default;
};

// One allowed value of a choice property.
struct ChoiceItem {
    int value = 0;
    WideString label;

    [[nodiscard]] bool operator==(const ChoiceItem&) const = default;
};

enum class EAssetError {
    eNone,
    eNotFound,            // no such file, library, asset or property
    eNotALibrary,         // not a SQLite database, or a database that is not a material library
    eUnsupportedVersion,  // a library written by a newer (or unknown) version of the format
    eCorrupt,             // truncated file, missing table or column, a value of the wrong kind
    eReadOnly,            // the library is marked read-only, or its file cannot be written
    eBusy,                // another writer holds the library
    eInvalidArgument,     // null pointer, malformed location, object of another manager
    eDuplicate,           // an asset or library with that identity exists already
    eIOError,             // the operating system refused a read or write
};

// Why an operation failed: a code to branch on and a message for logs.
struct AssetError {
    EAssetError code = EAssetError::eNone;
    std::string message;

    [[nodiscard]] bool failed() const { return code != EAssetError::eNone; }
};

// What a library is for, stored in the file and passed through unchanged: the numbers are part of
// the format. User libraries (favourites, libraries the user creates) are kind 5.
enum ELibraryKind : int {
    eDocumentAssetsLibrary = 0,  // the asset part of a document (serializer)
    eSystemPhysicalLibrary = 1,
    eSystemAppearanceLibrary = 2,
    eAdvancedPhysicalLibrary = 3,
    eAdvancedAppearanceLibrary = 4,
    eUserLibrary = 5,
    eAdditivePhysicalLibrary = 6,
    eNonlinearPhysicalLibrary = 7,
};

// Language codes of asset names: three letters, as the application's language table uses them.
inline constexpr const char* s_englishLanguage = "eng";
inline constexpr const char* s_germanLanguage = "deu";

} // namespace telvarin::platform::assets
