#pragma once

/// Every exported class and operator of Tessera; the flat calls come along.

#include "tessera/core/data_frame.h"
#include "tessera/core/date_range.h"
#include "tessera/core/date_time.h"
#include "tessera/core/error.h"
#include "tessera/core/handles.h"
#include "tessera/core/series.h"
#include "tessera/core/value_types.h"
#include "tessera/functors/apply_func.h"
#include "tessera/functors/copy_series.h"
#include "tessera/functors/element_walk.h"
#include "tessera/functors/functor.h"
#include "tessera/functors/functor_factory.h"
#include "tessera/tessera.h"
