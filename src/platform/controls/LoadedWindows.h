// The list of loaded windows that forms and the MDI window enter and leave; for the platform's own use.
#pragma once

#include <QList>

class QWidget;

namespace controls {

[[nodiscard]] QList<QWidget*>& loadedWindows();

} // namespace controls
