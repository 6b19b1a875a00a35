// The pictures of docs/first-station.md: the program's first start on an empty machine, played through.
#pragma once

#include <functional>

class QWidget;

// `save` takes a picture of a form under a name.
void WalkThrough(const std::function<void(QWidget&, const char*)>& save);
