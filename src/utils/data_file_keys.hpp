// Names of the keys of the data file.
#pragma once

namespace utils::key {

inline constexpr char simulation_name[] = "name";
inline constexpr char start_time[] = "t0";
inline constexpr char end_time[] = "tend";
inline constexpr char cfl[] = "CFL";
inline constexpr char mesh[] = "mesh";
inline constexpr char nodes[] = "nodes";
inline constexpr char cells[] = "cells";
inline constexpr char edges[] = "edges";
inline constexpr char origin[] = "origin";
inline constexpr char model[] = "model";
inline constexpr char model_name[] = "name";
inline constexpr char flux_scheme[] = "flux scheme";
inline constexpr char zero_depth[] = "zero depth value";
inline constexpr char conditions[] = "conditions";
inline constexpr char sources[] = "sources";
inline constexpr char initial_conditions[] = "initial conditions";
inline constexpr char fixed_bed_level[] = "fixed bed level";
inline constexpr char friction[] = "friction";
inline constexpr char sediments_level[] = "initial sediments level";
inline constexpr char parameters[] = "parameters";
inline constexpr char mean_grain[] = "sediments mean grain diameter";
inline constexpr char density[] = "sediments density";
inline constexpr char sediments_friction[] = "sediments friction coefficient";
inline constexpr char porosity[] = "sediments porosity";
inline constexpr char extensions[] = "extensions";
inline constexpr char output[] = "output";
inline constexpr char folder[] = "folder";
inline constexpr char dt_enveloppe[] = "time step enveloppe of results";
inline constexpr char pictures[] = "snapshots of flow";
inline constexpr char gauges[] = "gauges";
inline constexpr char discharges[] = "discharges";
inline constexpr char hyetocells[] = "hyetocells";
inline constexpr char rainfall[] = "rainfall";
inline constexpr char infiltration[] = "infiltration";
inline constexpr char infiltracells[] = "infiltracells";
inline constexpr char initial_infiltration[] = "initial infiltration";

}  // namespace utils::key
