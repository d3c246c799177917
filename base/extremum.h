// Which end of the scale an operation looks for.
#pragma once

namespace seedforest::detail {

enum class Extremum { largest, smallest };

} // namespace seedforest::detail
