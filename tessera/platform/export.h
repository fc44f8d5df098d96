#pragma once

/// Marks what a host may use. Everything else is hidden, so that the library stays small and binds quickly.
#define TESSERA_API __attribute__((visibility("default")))
