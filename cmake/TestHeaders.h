// As CoreHeaders.h, for the tests.
#pragma once

#include "CoreHeaders.h"

#include <QSignalSpy>
#include <QTest>
