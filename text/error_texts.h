// The texts that reach the page or the log when an operation of the core fails, each once.
#pragma once

namespace Vantrel::Web {

inline constexpr char kErrorSessionInitialized[] = "Session was already initialized";
inline constexpr char kErrorInvalidHostname[] = "Invalid application ID hostname";
inline constexpr char kErrorContacting[] =
    "Error contacting Orvane Vantrel. Ensure that it is running, and not blocked by your firewall "
    "or security policies.";
inline constexpr char kErrorRetrievingVersion[] = "Error retrieving the Orvane Vantrel version";
inline constexpr char kErrorCreatingRequest[] = "Error creating HTTP request";
inline constexpr char kErrorDialogOpen[] = "A dialog is already open";
inline constexpr char kErrorInvalidArgument[] = "Invalid argument";
inline constexpr char kErrorParsingFileTypes[] = "Error parsing fileTypes JSON";
inline constexpr char kErrorParsingJson[] = "Error parsing JSON";
inline constexpr char kErrorInitializingLog[] = "Error initializing log";
inline constexpr char kErrorMissingAppId[] = "Missing application ID - First initialize session";
inline constexpr char kErrorInitializingSession[] = "Error initializing session";
inline constexpr char kErrorConvertingEncoding[] = "Error converting string encoding";
inline constexpr char kErrorUnauthorizedDirectory[] =
    "The website attempted to transfer to an unauthorized directory";
inline constexpr char kErrorUnauthorizedFile[] =
    "The website attempted to upload an unauthorized file or folder";
inline constexpr char kErrorOpenFileDialog[] = "Error displaying open file dialog";
inline constexpr char kErrorOpenFolderDialog[] = "Error displaying open folder dialog";
inline constexpr char kErrorSaveFileDialog[] = "Error displaying save file dialog";
inline constexpr char kErrorInvalidFileType[] = "Invalid file type";
inline constexpr char kErrorFileNotAuthorized[] =
    "Unable to read file context. Only files selected via standard file dialog or drag and drop "
    "accepted";
inline constexpr char kErrorFileTooLarge[] = "Exceeded maximum allowed file size";
inline constexpr char kErrorChunkRange[] =
    "Offset and chunk size cannot be negative, and the sum can't be greater than the file size";
inline constexpr char kErrorOpeningFile[] = "Unable to open file";

}  // namespace Vantrel::Web
