#pragma once

#include "Platform/Text/PropertyList.h"

/// Which documents a launcher takes. The Finder lets only those be dropped on an application that its information list
/// names (CFBundleDocumentTypes in Apple's "Core Foundation Keys"); the launcher's program passes them on.
namespace tarvik::LauncherDocumentTypes {

/// The documents that an application opens, said in its launcher's words: by name, extension and content type, without
/// icons and classes that only the application has, and as one that is asked after all others, so that a double click
/// opens what it did before. Empty when `metadata`, the application's information list, names none.
PropertyList::List of(const PropertyList& metadata);

}  // namespace tarvik::LauncherDocumentTypes
