// SPDX-License-Identifier: MIT
// What the shared libraries export. Everything else in them is hidden, so
// only what carries one of these marks is Kelvarin's binary interface.
#pragma once

/// Marks a class or function of the toolkit-free core library (libkelvarin-core).
#define KELVARIN_CORE_API __attribute__((visibility("default")))
/// Marks a class or function of the Qt widget library (libkelvarin-widgets).
#define KELVARIN_WIDGETS_API __attribute__((visibility("default")))
