#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "combine/AnyCancellable.h"

namespace vistrel {

namespace combine {

/// Who listens to a stream of values, and the values on their way. A value sent from inside a receiver waits
/// until the one before it has reached everybody, so that all receivers see the same order. Each value goes
/// to those who had subscribed when it was sent and have not left since.
template <class Output>
class Channel : public std::enable_shared_from_this<Channel<Output>> {
 public:
  using Receiver = std::function<void(const Output&)>;

  [[nodiscard]] AnyCancellable subscribe(Receiver receiver) {
    auto seat = std::make_shared<Seat>(Seat{std::move(receiver)});
    seats_.push_back(seat);
    return AnyCancellable([channel = this->weak_from_this(), seat] {
      seat->isTaken = false;
      if (const auto alive = channel.lock()) std::erase(alive->seats_, seat);
    });
  }

  void send(const Output& value) {
    waiting_.push_back({value, seats_});
    if (isDelivering_) return;
    const auto kept = this->shared_from_this();
    const Delivering delivering(*this);
    while (!waiting_.empty()) {
      const Delivery delivery = std::move(waiting_.front());
      waiting_.pop_front();
      for (const auto& seat : delivery.seats) {
        if (seat->isTaken) seat->receiver(delivery.value);
      }
    }
  }

 private:
  /// What a receiver throws ends the delivery, and what still waited with it; later values come as ever.
  class Delivering {
   public:
    explicit Delivering(Channel& channel) : channel_(channel) { channel_.isDelivering_ = true; }
    Delivering(const Delivering&) = delete;
    Delivering& operator=(const Delivering&) = delete;
    ~Delivering() {
      channel_.waiting_.clear();
      channel_.isDelivering_ = false;
    }

   private:
    Channel& channel_;
  };
  struct Seat {
    Receiver receiver;
    bool isTaken = true;
  };
  struct Delivery {
    Output value;
    std::vector<std::shared_ptr<Seat>> seats;
  };
  std::vector<std::shared_ptr<Seat>> seats_;
  std::deque<Delivery> waiting_;
  bool isDelivering_ = false;
};

}  // namespace combine

/// A stream of values that never fails, whoever sends them. Main thread only.
template <class Output>
class AnyPublisher {
 public:
  using Receiver = std::function<void(const Output&)>;
  using Attach = std::function<AnyCancellable(Receiver)>;

  explicit AnyPublisher(Attach attach) : attach_(std::move(attach)) {}
  /// Hands every value to `receiver` until the token ends.
  [[nodiscard]] AnyCancellable sink(Receiver receiver) const { return attach_(std::move(receiver)); }

 private:
  Attach attach_;
};

/// A stream that remembers its last value and begins each subscription with it. Main thread only.
template <class Output>
class CurrentValueSubject {
 public:
  explicit CurrentValueSubject(Output value) : state_(std::make_shared<State>(std::move(value))) {}

  [[nodiscard]] const Output& value() const { return state_->value; }
  void send(Output value) {
    state_->value = std::move(value);
    state_->channel->send(state_->value);
  }
  [[nodiscard]] AnyPublisher<Output> eraseToAnyPublisher() const {
    return AnyPublisher<Output>([state = state_](const typename AnyPublisher<Output>::Receiver& receiver) {
      const Output current = state->value;
      auto token = state->channel->subscribe(receiver);
      receiver(current);
      return token;
    });
  }

 private:
  struct State {
    explicit State(Output first) : value(std::move(first)) {}
    Output value;
    std::shared_ptr<combine::Channel<Output>> channel = std::make_shared<combine::Channel<Output>>();
  };
  std::shared_ptr<State> state_;
};

}  // namespace vistrel
