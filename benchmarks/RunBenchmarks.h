#pragma once

/// Registers, for each collection and each number of files in its folders, "SHAPE/FILES/STEP": the
/// bare listings ("floor"), the walk ("walk"), the walk by the reference implementation ("plain"),
/// the report ("render") and a whole run ("start").
void registerRunBenchmarks();
