// As CoreHeaders.h, for the tests of what has a widget.
#pragma once

#include "WindowHeaders.h"

#include <QSignalSpy>
#include <QTest>
