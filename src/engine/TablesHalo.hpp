// The halo of tables on the host: packed for others, and put in its places.
#pragma once

#include <vector>

#include "engine/Exchange.hpp"

namespace engine {

class TablesHalo {
 public:
  /// The exchange must outlive it.
  TablesHalo(const Tables& tables, Exchange& exchange)
      : exchange_(exchange),
        places_sent_(tables.places_of(exchange.halo().sent)),
        places_received_(tables.places_of(exchange.halo().received)) {}

  /// Sends the states of the cells that are ghosts of others, which may change again on return.
  void start(Tables& tables) {
    list_columns(tables);
    sent_.resize(places_sent_.size() * columns_.size());
    received_.resize(places_received_.size() * columns_.size());
    auto value = sent_.begin();
    for (const int place : places_sent_) {
      for (const Column* const column : columns_) *value++ = (*column)[at(place)];
    }
    exchange_.start_halo({sent_.data(), received_.data(), static_cast<int>(columns_.size())});
  }

  /// Puts those of the ghosts in their places.
  void finish() {
    exchange_.finish_halo();
    auto value = received_.begin();
    for (const int place : places_received_) {
      for (Column* const column : columns_) (*column)[at(place)] = *value++;
    }
  }

 private:
  void list_columns(Tables& tables) {
    columns_.clear();
    for_each_halo_column(tables.cells, [&](Column& column) { columns_.push_back(&column); });
  }

  Exchange& exchange_;
  std::vector<int> places_sent_, places_received_;
  std::vector<Column*> columns_;  ///< on their way
  std::vector<double> sent_, received_;
};

}  // namespace engine
