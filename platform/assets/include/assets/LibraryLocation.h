#pragma once

#include "assets/AssetTypes.h"

#include <filesystem>
#include <optional>

namespace telvarin::platform::assets {

// Libraries of the content service are addressed by netfs URIs:
//
//   netfs://<authority>:<path>        e.g. netfs://LOCAL-LIBRARY:/slib/content/physical
//
// <authority> names the library service (the local material library identifier): one or more
// characters other than '/', '?', '#' and blanks; the ':' after it (an empty port) may be left
// out. <path> is absolute: '/'-separated segments of letters, digits and "._-", none empty, "." or
// "..". Nothing else (no query, fragment or backslash) is accepted.
//
// Only the local service is served, whatever the authority: the path is looked up in the mount
// table <content root>/libraries/netfs.mounts (docs/formats.md); a path that is not mounted names
// the file <content root>/libraries<path>.tvrnlib.
struct NetfsUri {
    WideString authority;
    WideString path;
};

[[nodiscard]] bool IsNetfsUri(const WideString& location);
// Empty optional for anything that is not a well-formed netfs URI.
[[nodiscard]] std::optional<NetfsUri> ParseNetfsUri(const WideString& location);
[[nodiscard]] WideString MakeNetfsUri(const WideString& authority, const WideString& path);
// The library file a netfs URI names under `contentRoot`; empty optional for a malformed URI.
// The file need not exist.
[[nodiscard]] std::optional<std::filesystem::path> ResolveNetfsUri(const WideString& location,
    const std::filesystem::path& contentRoot);
// The same, except that paths of the user space ("/user/...", the user's own libraries such as the
// private appearance library) name files the user can write: <userDirectory>/netfs<path>.tvrnlib,
// never looked up in the installed mount table. This is how the library manager resolves URIs.
[[nodiscard]] std::optional<std::filesystem::path> ResolveNetfsUri(const WideString& location,
    const std::filesystem::path& contentRoot, const std::filesystem::path& userDirectory);

} // namespace telvarin::platform::assets
