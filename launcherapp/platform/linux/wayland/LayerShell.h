#pragma once

#include <wayland-client.h> // before, since what it includes does need the word that is lent below

// One of the protocol's arguments has a name that C++ keeps for itself.
#define namespace scope
#include <wlr-layer-shell-unstable-v1.h>
#undef namespace
