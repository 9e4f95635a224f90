// As CoreHeaders.h, for what has a widget.
#pragma once

#include "CoreHeaders.h"

#include <QtWidgets>
