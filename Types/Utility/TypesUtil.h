#pragma once

#include <string>
#include <vector>

// Utilities of the material libraries' installation: which library set is installed, and where the
// files of the libraries, their textures and temporary files live.
namespace Kx::Types {

// The GUID of the installed material library set, from "MaterialLibraryHistory.xml" in the core
// add-in folder (the content root). The file is read once per process, by the first call of either
// function; every problem it has is reported through the assertion facility and reading goes on
// with what was found (a missing file gives an empty GUID and no legacy sets).
[[nodiscard]] std::wstring GetCurrentMaterialLibraryGUID();
// The GUIDs of the earlier library sets, oldest ("ID" 1) first.
[[nodiscard]] std::vector<std::wstring> GetLegacyMaterialLibraryGUID();

// The folder of the standard library files and of the favourites library, without a trailing
// separator: <user directory>/libraries/<current library set GUID> ("unversioned" when the history
// names no set). It is the user's, so the favourites library beside the standard files can be
// written; each library set has its own folder, so a content update never mixes two sets.
// Created and filled by SetUpSharedInstall, not here: this is a pure query.
[[nodiscard]] std::wstring GetReducedLibraryPath();
// The authority of netfs URIs of the local material library service.
[[nodiscard]] std::wstring GetLocalMaterialLibraryID();
// Server and cloud-translator editions (Paths::edition() "server" or "cloudtranslator") read the
// standard libraries as plain files of the reduced library folder; the others through the content
// service.
[[nodiscard]] bool IsServerOrCloudTranslatorEdition();
// Where images that textures take from libraries are kept as files: <user directory>/textures
// (one folder per library identifier below it).
[[nodiscard]] std::wstring GetTextureLibraryPath();
// The folder of temporary files (Paths::tempDirectory(), created when asked for).
[[nodiscard]] std::wstring GetTempDirectory();

// The files of the installed standard library set, as they lie in <content root>/libraries.
[[nodiscard]] const std::vector<std::wstring>& GetStandardLibraryFileNames();
// The favourites library's file name in the reduced library folder.
inline constexpr const wchar_t* s_favoritesFileName = L"Favorites.tvrnlib";

// Makes the reduced library folder match the installed set: creates it, copies each standard
// library file of <content root>/libraries that is missing there or differs from the installed one
// (written beside and renamed, so a reader never sees half a file), and removes a standard file
// that is no longer installed. When the folder has no favourites yet, the favourites of the newest
// earlier library set that has some are copied in, so a content update keeps them. The user's own
// files there are never touched otherwise. False, with the reason logged and in `problem`, when the
// folder cannot be made or a file cannot be copied; what could be done is done.
bool SetUpSharedInstall(std::string* problem = nullptr);

} // namespace Kx::Types
