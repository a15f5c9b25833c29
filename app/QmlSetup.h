// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What every QML engine of the app needs before it loads a screen: the Material style in the
// app's light theme and tint, and the thumbnail image provider. The app, the screenshot driver
// and the QML load test all go through here, so they see the same screens.
class QQmlEngine;

namespace appqml {

// Before the first engine is made.
void setStyle();
// Installs the image providers (image://thumb/...).
void setUpEngine(QQmlEngine& engine);

}  // namespace appqml
