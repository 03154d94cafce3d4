// A link by which the copies of a value know one another: a ring through all of them, of one when
// there is no other. Evaluations run one at a time, so nothing guards it.
#pragma once

class RingOfCopies {
 public:
  RingOfCopies() = default;
  // Behind the source.
  RingOfCopies(RingOfCopies const& source) { LinkBehind(source); }
  RingOfCopies& operator=(RingOfCopies const& source) {
    if (this == &source) return *this;
    Unlink();
    LinkBehind(source);
    return *this;
  }
  ~RingOfCopies() { Unlink(); }

  bool IsAlone() const { return next_ == this; }

 private:
  void LinkBehind(RingOfCopies const& source) {
    next_ = source.next_;
    previous_ = &source;
    next_->previous_ = this;
    source.next_ = this;
  }
  void Unlink() {
    next_->previous_ = previous_;
    previous_->next_ = next_;
  }

  // Mutable: being copied changes the ring and not the value.
  mutable RingOfCopies const* next_ = this;
  mutable RingOfCopies const* previous_ = this;
};
