#pragma once

#include "Platform/Basics/Path.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QUrl>
#include <QVariant>

#include <functional>
#include <optional>

class QMimeData;

/// Gets the address of a file out of what was dropped on the window, in whatever form it comes: file managers, browsers
/// and terminals each offer another one.
namespace tarvik::DropURLReader {

/// What was dropped, as the one who drops it offers it: the types of its forms, and the form of each.
struct Item {
    QStringList types;
    std::function<QVariant(const QString& type)> form;
};

/// The types that are understood, as a Mac's pasteboard calls them, the best first.
const QStringList& supportedTypes();
/// The forms of dropped data under these types. It must outlive the item.
Item itemOf(const QMimeData& data);

/// The address in the first form of a supported type that holds one; nothing when none does.
std::optional<QUrl> load(const Item& item);
/// The address in one form: an address, the bytes of one, text, which may be a path with white space around it, or a
/// list, of which the first element that holds one counts. Pure.
std::optional<QUrl> decode(const QVariant& form);

/// The address of a path, whose bytes need not be UTF-8, and the path of the address of a file; nothing for any other
/// address, and for one with a NUL in its path. The path is as it was written: it may be relative. Pure.
QUrl urlOf(const QByteArray& path);
std::optional<fs::path> pathOf(const QUrl& url);

}  // namespace tarvik::DropURLReader
