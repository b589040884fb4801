#include "State/Lists/FilePath.h"

#include "State/Lists/ScreenText.h"

namespace tarvik {

QString FilePath::text() const {
    return screenPath(path);
}

QString FilePath::name() const {
    return screenPath(path.filename());
}

}  // namespace tarvik
