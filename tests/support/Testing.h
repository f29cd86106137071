#pragma once

// What a test file of this project starts with: GoogleTest and GoogleMock, the Qt types that
// most tests touch, Qt strings printed as text in failures, and the project's namespaces.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include "support/QtPrinters.h"

namespace zelvar::test {}
using namespace zelvar;
using namespace zelvar::test;
