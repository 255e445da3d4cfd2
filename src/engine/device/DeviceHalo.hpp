// The halo of the tables of a device: packed there, sent from there where the exchange can, or else
// by way of the host, and put in its places. Machine is the device: Emulator, say.
#pragma once

#include <vector>

#include "engine/Exchange.hpp"
#include "engine/Tables.hpp"
#include "engine/device/ListedCells.hpp"

namespace engine::device {

template <class Machine>
class DeviceHalo {
 public:
  DeviceHalo(const Tables& tables, const Exchange& exchange)
      : is_direct_(exchange.takes_memory_of_card()) {
    cells_sent_.list(tables.places_of(exchange.halo().sent));
    cells_received_.list(tables.places_of(exchange.halo().received));
  }

  bool is_empty() const { return cells_sent_.size() == 0 && cells_received_.size() == 0; }
  /// Whether messages start and end in the memory of the device.
  bool is_direct() const { return is_direct_; }

  /// Begins to pack these columns, as they are once what was launched before is done.
  void start(const std::vector<double*>& columns, Machine& machine) {
    if (is_empty()) return;
    columns_ = columns;
    cells_sent_.pack(columns_, sent_, machine);
    received_.resize(cells_received_.size() * columns_.size());
    if (is_direct_) {
      packed_.set(sent_);
    } else {
      sent_by_host_.start_home(sent_);
      received_by_host_.resize(received_.size());
    }
  }
  /// Returns what is to be sent and filled, when it is packed. All that was launched before is
  /// done, so that nobody still reads what was received before.
  PackedHalo packed() {
    const auto columns = static_cast<int>(columns_.size());
    if (is_empty()) return {nullptr, nullptr, columns};
    if (is_direct_) return {packed_.wait(), received_.data(), columns};
    return {sent_by_host_.wait().data(), received_by_host_.data(), columns};
  }
  /// Puts what was received in its places, with a bed that is laid there.
  void take(const BedColumns& laid, Machine& machine) {
    if (is_empty()) return;
    if (!is_direct_) received_by_host_.start_away(received_);
    cells_received_.unpack(received_, columns_, laid, machine);
  }

 private:
  using Numbers = typename Machine::template Array<double>;

  bool is_direct_;
  ListedCells<Machine> cells_sent_, cells_received_;
  std::vector<double*> columns_;  ///< on their way
  Numbers sent_, received_;
  typename Machine::Mark packed_;
  typename Machine::Parcel sent_by_host_, received_by_host_;
};

}  // namespace engine::device
