#pragma once

namespace kiln {

class Data;
class TKohonenNetwork;

// How well a map stands for the rows of a data set.
struct TMapScore {
  double quantisation;  // mean distance of a row to its winner
  double topographic;   // share of rows whose two nearest units are no neighbours on the grid;
                        // units that touch at a corner are neighbours
};

// Throws TException when the inputs of the set do not fit, TAssertion "bestsofar >= 0" for a row
// without a winner (see TKohonenNetwork). REQUIRES: the set has rows.
TMapScore MeasureMap(const TKohonenNetwork& map, const Data& set);

}  // namespace kiln
