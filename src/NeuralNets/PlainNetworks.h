#pragma once

namespace kiln {

class TBasicNetwork;

// Whether every layer but the input layer passes weighted sums of lower layers through activation
// functions, and does nothing else. How such a network computes can be laid out in advance.
bool IsPlain(const TBasicNetwork& network);

}  // namespace kiln
