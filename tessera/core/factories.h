#pragma once

#include <functional>
#include <memory>

#include "tessera/core/series.h"

namespace MERVO::Tessera {

namespace Func {
class NullaryBase;
class UnaryBase;
class BinaryBase;
} // namespace Func

template <typename Base>
using FunctorPtr = std::unique_ptr<Base, CustomizedDeleter<Base>>;

/// Make the functor of one operation for a container; the apply paths take operations in this form.
using NullaryFactory = std::function<FunctorPtr<Func::NullaryBase>(ContainerID)>;
using UnaryFactory = std::function<FunctorPtr<Func::UnaryBase>(ContainerID)>;
using BinaryFactory = std::function<FunctorPtr<Func::BinaryBase>(ContainerID)>;

} // namespace MERVO::Tessera
