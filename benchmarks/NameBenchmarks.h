#pragma once

/// Registers "names/CLASS/DEFAULT/EVALUATION": the classification of a folder name, for each class
/// of names, with the system locale as the default locale ("system") and with another one
/// ("other"), by the library ("library") and by the reference implementation ("plain"). The time is
/// that of one name.
///
/// The system locale is that of the environment (LC_ALL): C, or an English or a German one.
void registerNameBenchmarks();
