#include "case/DataFileReader.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "support/TemporaryFolder.hpp"
#include "support/fatal.hpp"

namespace {

using nlohmann::json;
using Reader = utils::DataFileReader;
using Path = std::vector<std::string>;

const std::string not_found = "Error. The following key couldn't be found in the datafile: ";
const std::string bad_format = "Error. The following key has incorrect format in the datafile: ";

template <class T>
struct Getter {
  Path path;
  T (Reader::*get)() const;
};

const std::vector<Getter<std::string>> texts = {
    {{"name"}, &Reader::get_simulation_name},
    {{"mesh", "nodes"}, &Reader::get_nodes_file},
    {{"mesh", "cells"}, &Reader::get_cells_file},
    {{"mesh", "edges"}, &Reader::get_edges_file},
    {{"model", "name"}, &Reader::get_model_name},
    {{"model", "flux scheme"}, &Reader::get_flux_scheme_name},
    {{"model", "conditions", "initial conditions"},
     &Reader::get_initial_hydrodynamic_conditions_file},
    {{"model", "conditions", "fixed bed level"}, &Reader::get_fixed_bed_level_file},
    {{"model", "conditions", "friction"}, &Reader::get_friction_file},
    {{"model", "conditions", "initial sediments level"}, &Reader::get_sediments_level_file},
    {{"model", "sources", "rainfall"}, &Reader::get_rainfall_file},
    {{"model", "sources", "hyetocells"}, &Reader::get_hyetocells_file},
    {{"model", "sources", "infiltration"}, &Reader::get_infiltration_file},
    {{"model", "sources", "infiltracells"}, &Reader::get_infiltracells_file},
    {{"model", "sources", "initial infiltration"}, &Reader::get_initial_infiltration_file},
    {{"output", "folder"}, &Reader::get_output_folder_path},
    {{"output", "snapshots of flow"}, &Reader::get_pictures_file},
    {{"output", "gauges"}, &Reader::get_gauges_file},
    {{"output", "discharges"}, &Reader::get_discharge_file}};

const std::vector<Getter<double>> numbers = {
    {{"t0"}, &Reader::get_start_time},
    {{"tend"}, &Reader::get_end_time},
    {{"CFL"}, &Reader::get_CFL},
    {{"model", "zero depth value"}, &Reader::get_zero_depth_value},
    {{"model", "parameters", "sediments mean grain diameter"}, &Reader::get_sediments_mean_grain},
    {{"model", "parameters", "sediments density"}, &Reader::get_sediments_density},
    {{"model", "parameters", "sediments friction coefficient"}, &Reader::get_sediments_friction},
    {{"model", "parameters", "sediments porosity"}, &Reader::get_sediments_porosity},
    {{"output", "time step enveloppe of results"}, &Reader::get_dt_enveloppe}};

const std::vector<Getter<bool>> presence_tests = {
    {{"model", "conditions", "fixed bed level"}, &Reader::is_imposed_fixed_bed_level},
    {{"model", "conditions", "friction"}, &Reader::is_imposed_friction},
    {{"model", "sources", "rainfall"}, &Reader::is_rainfall},
    {{"model", "sources", "infiltration"}, &Reader::is_infiltration},
    {{"model", "sources", "initial infiltration"}, &Reader::is_initial_infiltration},
    {{"extensions"}, &Reader::is_extensions},
    {{"output", "snapshots of flow"}, &Reader::is_pictures},
    {{"output", "gauges"}, &Reader::is_gauges},
    {{"output", "discharges"}, &Reader::is_discharge_check}};

json::json_pointer pointer_to(const Path& path) {
  json::json_pointer pointer;
  for (const std::string& key : path) pointer /= key;
  return pointer;
}

/// A document that has every key: a text says where it stands, a number is different from all.
json complete_document() {
  json document;
  for (const auto& text : texts) {
    const auto pointer = pointer_to(text.path);
    document[pointer] = pointer.to_string();
  }
  double value = 0.5;
  for (const auto& number : numbers) document[pointer_to(number.path)] = value += 1.25;
  document["extensions"] = nullptr;
  return document;
}

json without(const Path& path) {
  json document = complete_document();
  const auto pointer = pointer_to(path);
  document[pointer.parent_pointer()].erase(pointer.back());
  return document;
}

json with(const Path& path, const json& value) {
  json document = complete_document();
  document[pointer_to(path)] = value;
  return document;
}

template <class Call>
auto answer(const json& document, Call call) {
  const support::TemporaryFolder folder;
  const Reader reader(folder.write("data.json", document.dump()));
  return std::invoke(call, reader);
}

/// What the exception of the reader says; "no error" without one.
template <class Call>
std::string complaint(const json& document, Call call) {
  try {
    answer(document, call);
  } catch (const utils::DataFileReaderException& error) {
    return error.what();
  }
  return "no error";
}

TEST(DataFileReader, EveryGetterAnswersTheValueOfItsKey) {
  const json document = complete_document();
  for (const auto& text : texts) {
    const auto pointer = pointer_to(text.path);
    EXPECT_EQ(answer(document, text.get), document[pointer].get<std::string>()) << pointer;
  }
  for (const auto& number : numbers) {
    const auto pointer = pointer_to(number.path);
    EXPECT_EQ(answer(document, number.get), document[pointer].get<double>()) << pointer;
  }
}

TEST(DataFileReader, EveryTextGetterNamesItsKeyWhenItIsMissing) {
  for (const auto& text : texts) {
    EXPECT_EQ(complaint(without(text.path), text.get), not_found + text.path.back());
  }
}

TEST(DataFileReader, EveryNumberGetterButOneNamesItsKeyWhenItIsMissing) {
  for (const auto& number : numbers) {
    if (number.path.back() == "zero depth value") continue;
    EXPECT_EQ(complaint(without(number.path), number.get), not_found + number.path.back());
  }
}

TEST(DataFileReader, EveryTextGetterRefusesOtherTypes) {
  for (const auto& text : texts) {
    for (const json& value : {json(5), json(true), json(nullptr), json::array(), json::object()}) {
      EXPECT_EQ(complaint(with(text.path, value), text.get), bad_format + text.path.back())
          << value;
    }
  }
}

TEST(DataFileReader, EveryNumberGetterRefusesTextsListsObjectsAndNull) {
  for (const auto& number : numbers) {
    for (const json& value : {json("0"), json(nullptr), json::array({1}), json::object()}) {
      EXPECT_EQ(complaint(with(number.path, value), number.get), bad_format + number.path.back())
          << value;
    }
  }
}

TEST(DataFileReader, EveryNumberGetterRefusesATruthValue) {
  for (const auto& number : numbers) {
    EXPECT_EQ(complaint(with(number.path, true), number.get), bad_format + number.path.back());
  }
}

TEST(DataFileReader, EveryNumberGetterAcceptsAnInteger) {
  for (const auto& number : numbers) {
    EXPECT_EQ(answer(with(number.path, 0), number.get), 0.0);
    EXPECT_EQ(answer(with(number.path, -3), number.get), -3.0);
    EXPECT_EQ(answer(with(number.path, 3000000000U), number.get), 3e9);
  }
}

TEST(DataFileReader, EveryGetterNamesTheEnclosingObjectThatIsMissing) {
  const auto check = [](const auto& getters) {
    for (const auto& getter : getters) {
      for (std::size_t depth = 1; depth < getter.path.size(); ++depth) {
        const Path enclosing(getter.path.begin(),
                             getter.path.begin() + static_cast<std::ptrdiff_t>(depth));
        EXPECT_EQ(complaint(without(enclosing), getter.get), not_found + enclosing.back())
            << getter.path.back();
      }
    }
  };
  check(texts);
  check(numbers);
  check(presence_tests);
}

TEST(DataFileReader, AGetterFailsWhenAnEnclosingValueIsNoObject) {
  const auto check = [](const auto& getters) {
    for (const auto& getter : getters) {
      if (getter.path.size() < 2) continue;
      EXPECT_THROW(answer(with({getter.path.front()}, "text"), getter.get), std::exception)
          << getter.path.back();
    }
  };
  check(texts);
}

TEST(DataFileReader, PresenceTestsAnswerWhetherTheKeyIsThere) {
  for (const auto& test : presence_tests) {
    EXPECT_TRUE(answer(complete_document(), test.get)) << test.path.back();
    EXPECT_FALSE(answer(without(test.path), test.get)) << test.path.back();
  }
}

TEST(DataFileReader, PresenceTestsDoNotLookAtTheType) {
  for (const auto& test : presence_tests) {
    for (const json& value : {json(5), json(false), json(nullptr), json::object()}) {
      EXPECT_TRUE(answer(with(test.path, value), test.get)) << test.path.back() << value;
    }
  }
}

TEST(DataFileReader, AFileIsNamedWhereARunAsksForIt) {
  const auto file_under = [](const cases::Key& key) {
    return [&key](const Reader& reader) { return reader.file(key); };
  };
  const auto nodes = file_under(cases::key("mesh/nodes"));
  const auto rain = file_under(cases::key("model/sources/rainfall"));
  const auto hyetocells = file_under(cases::key("model/sources/hyetocells"));
  const auto sediment = file_under(cases::key("model/conditions/initial sediments level"));
  const Path sources = {"model", "sources"}, model = {"model", "name"};
  EXPECT_EQ(answer(complete_document(), nodes), "/mesh/nodes");
  EXPECT_EQ(complaint(without({"mesh", "nodes"}), nodes), not_found + "nodes");
  EXPECT_EQ(answer(complete_document(), rain), "/model/sources/rainfall");
  EXPECT_EQ(answer(with(sources, json::object()), rain), std::nullopt);
  EXPECT_EQ(complaint(with({"model", "sources", "rainfall"}, 7), rain), bad_format + "rainfall");
  EXPECT_EQ(answer(complete_document(), hyetocells), "/model/sources/hyetocells");
  EXPECT_EQ(answer(with(sources, {{"hyetocells", "cells.txt"}}), hyetocells), std::nullopt);
  EXPECT_EQ(complaint(without({"model", "sources", "hyetocells"}), hyetocells),
            not_found + "hyetocells");
  EXPECT_EQ(answer(with(model, cases::water_model), sediment), std::nullopt);
  EXPECT_EQ(answer(with(model, cases::sediment_model), sediment),
            "/model/conditions/initial sediments level");
}

TEST(DataFileReader, TheZeroDepthIsATenthOfAMillimetreWhenAbsent) {
  EXPECT_EQ(answer(without({"model", "zero depth value"}), &Reader::get_zero_depth_value), 0.0001);
}

TEST(DataFileReader, AnEmptySourcesObjectMeansNoSources) {
  const json document = with({"model", "sources"}, json::object());
  EXPECT_FALSE(answer(document, &Reader::is_rainfall));
  EXPECT_FALSE(answer(document, &Reader::is_infiltration));
  EXPECT_FALSE(answer(document, &Reader::is_initial_infiltration));
}

TEST(DataFileReader, OnlyTheExactNameIsTheModelWithSediments) {
  const Path name = {"model", "name"};
  EXPECT_TRUE(answer(with(name, "Bramsett"), &Reader::is_sediments));
  for (const char* other : {"bramsett", "BRAMSETT", "Bramsett ", "Quillmere", ""}) {
    EXPECT_FALSE(answer(with(name, other), &Reader::is_sediments)) << other;
  }
}

TEST(DataFileReader, TheSedimentKeysAreRequirementsWhateverTheModel) {
  for (const char* name : {"Bramsett", "Quillmere"}) {
    json document = with({"model", "name"}, name);
    EXPECT_TRUE(answer(document, &Reader::is_imposed_sediments_level));
    EXPECT_TRUE(answer(document, &Reader::is_sediments_parameters));
    document["model"]["conditions"].erase("initial sediments level");
    EXPECT_EQ(complaint(document, &Reader::is_imposed_sediments_level),
              not_found + "initial sediments level");
    document["model"]["conditions"]["initial sediments level"] = 0.5;
    EXPECT_EQ(complaint(document, &Reader::is_imposed_sediments_level),
              bad_format + "initial sediments level");
    document["model"].erase("parameters");
    EXPECT_EQ(complaint(document, &Reader::is_sediments_parameters), not_found + "parameters");
  }
}

TEST(DataFileReader, TheSedimentGettersAskForTheModelFirst) {
  const json document = without({"model", "name"});
  const std::string expected = not_found + "name";
  EXPECT_EQ(complaint(document, &Reader::is_sediments), expected);
  EXPECT_EQ(complaint(document, &Reader::is_imposed_sediments_level), expected);
  EXPECT_EQ(complaint(document, &Reader::is_sediments_parameters), expected);
  EXPECT_EQ(complaint(document, &Reader::get_sediments_level_file), expected);
  for (const auto get : {&Reader::get_sediments_mean_grain, &Reader::get_sediments_density,
                         &Reader::get_sediments_friction, &Reader::get_sediments_porosity}) {
    EXPECT_EQ(complaint(document, get), expected);
  }
}

TEST(DataFileReader, ConstructionChecksNothingButTheSyntax) {
  EXPECT_FALSE(answer(json::object(), &Reader::is_extensions));
  EXPECT_EQ(complaint(json::object(), &Reader::get_simulation_name), not_found + "name");
}

TEST(DataFileReader, ConstructionThrowsForMalformedText) {
  const support::TemporaryFolder folder;
  for (const char* text : {"", "{\"name\": ", "{'name': 1}", "{\"t0\": 1e999}", "{\"t0\": nan}"}) {
    const std::string path = folder.write("data.json", text);
    EXPECT_THROW(Reader{path}, json::exception) << text;
  }
}

TEST(DataFileReaderDeathTest, EndsTheRunWithoutAFile) {
  EXPECT_FATAL(Reader("missing.json"), 255,
               "^Fatal error. Impossible to open file missing\\.json\\.\n$");
}

TEST(DataFileReaderException, SaysTheMessageDirectlyFollowedByTheKey) {
  const utils::DataFileReaderException error("message: ", "key");
  EXPECT_STREQ(error.what(), "message: key");
  EXPECT_NE(dynamic_cast<const std::exception*>(&error), nullptr);
}

std::string path_text(const Path& path) { return pointer_to(path).to_string().substr(1); }

/// Asks for every text and number of the water model, as far as it stands in the document.
utils::KeyUses uses_after_all_questions(const json& document) {
  const support::TemporaryFolder folder;
  const Reader reader(folder.write("data.json", document.dump()));
  const auto ask = [&](const auto& getters) {
    for (const auto& getter : getters) {
      if (document.contains(pointer_to(getter.path))) std::invoke(getter.get, reader);
    }
  };
  ask(texts);
  ask(numbers);
  return reader.key_uses();
}

TEST(KeyUses, EveryKeyThatIsAskedForIsReadAndKnown) {
  const utils::KeyUses uses = uses_after_all_questions(complete_document());
  EXPECT_EQ(uses.read.size(), texts.size() + numbers.size());
  EXPECT_TRUE(uses.defaulted.empty());
  EXPECT_TRUE(uses.ignored.empty());
  EXPECT_EQ(uses.unused, std::vector<std::string>{"extensions"});  // no run asks for it
  for (const std::string& path : uses.read) {
    const auto is_here = [&](const cases::Key& key) { return key.path == path; };
    EXPECT_TRUE(std::any_of(cases::keys.begin(), cases::keys.end(), is_here)) << path;
  }
}

TEST(KeyUses, KeysThatMayBeMissingAreDefaultedThen) {
  for (const Path& path :
       {Path{"model", "zero depth value"}, Path{"model", "conditions", "fixed bed level"},
        Path{"model", "conditions", "friction"}, Path{"model", "sources", "rainfall"},
        Path{"model", "sources", "infiltration"}, Path{"model", "sources", "initial infiltration"},
        Path{"output", "snapshots of flow"}, Path{"output", "gauges"},
        Path{"output", "discharges"}}) {
    const utils::KeyUses uses = uses_after_all_questions(without(path));
    ASSERT_EQ(uses.defaulted.size(), 1U) << path.back();
    EXPECT_EQ(uses.defaulted[0].key, path_text(path));
    EXPECT_NE(uses.defaulted[0].value, "");
  }
}

TEST(KeyUses, AMissingZeroDepthIsReportedWithTheValueThatIsUsed) {
  const json document = without({"model", "zero depth value"});
  const std::string value = uses_after_all_questions(document).defaulted.at(0).value;
  EXPECT_EQ(std::stod(value), answer(document, &Reader::get_zero_depth_value));
}

TEST(KeyUses, KeysNobodyAsksForAreIgnoredWithTheNearestKnownKey) {
  const auto ignored = [](const Path& path) {
    json document = with(path, "x");
    document.erase("extensions");
    const utils::KeyUses uses = uses_after_all_questions(document);
    EXPECT_EQ(uses.ignored.size(), 1U);
    EXPECT_EQ(uses.ignored.at(0).key, path_text(path));
    return uses.ignored.at(0).nearest;
  };
  EXPECT_EQ(ignored({"output", "gaugs"}), "output/gauges");
  EXPECT_EQ(ignored({"friction"}), "model/conditions/friction");
  EXPECT_EQ(ignored({"TEnd"}), "tend");
  EXPECT_EQ(ignored({"model", "Name"}), "model/name");
  EXPECT_EQ(ignored({"author of this"}), "");
}

TEST(KeyUses, ANameThatReadsLikeAPathIsNoKey) {
  json document = complete_document();
  document["mesh/nodes"] = "nodes.txt";
  const utils::KeyUses uses = uses_after_all_questions(document);
  ASSERT_EQ(uses.ignored.size(), 1U);
  EXPECT_EQ(uses.ignored[0].key, "mesh/nodes");
}

TEST(KeyUses, AKeyOfTheWrongTypeWasReadAndWhatAnUnknownSectionHoldsIsNotListed) {
  json document = complete_document();
  document["CFL"] = "large";
  document["notes"]["by"] = "me";
  const support::TemporaryFolder folder;
  const Reader reader(folder.write("data.json", document.dump()));
  EXPECT_THROW(reader.get_CFL(), utils::DataFileReaderException);
  const utils::KeyUses uses = reader.key_uses();
  EXPECT_EQ(uses.read, std::vector<std::string>{"CFL"});
  ASSERT_EQ(uses.ignored.size(), 1U);
  EXPECT_EQ(uses.ignored[0].key, "notes");
  EXPECT_EQ(uses.unused, (std::vector<std::string>{"extensions", "mesh", "model", "name", "output",
                                                   "t0", "tend"}));
}

}  // namespace
