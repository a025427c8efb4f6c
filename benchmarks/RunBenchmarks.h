#pragma once

/// Registers, for each collection and each number of files in its folders, "SHAPE/FILES/STEP":
/// the bare listings ("floor"), the walk ("walk"), the report on its results ("render") and all of
/// a run ("start"). "plain" is the literal evaluation of the walk.
void registerRunBenchmarks();
