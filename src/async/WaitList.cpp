#include "async/WaitList.h"

namespace quillmar {

WaitList::~WaitList() {
    // Whoever waits for something that can no longer happen is told so, as if cancelled.
    while (first_) {
        Waiter* waiter = first_;
        waiter->leave();
        waiter->list_ = nullptr;
        waiter->resumeLater(Waiter::State::cancelled);
    }
}

bool WaitList::resumeFirst() {
    Waiter* waiter = first_;
    if (!waiter) return false;
    waiter->leave();
    if (!lostTurn_) waiter->list_ = nullptr;  // nobody asks for the turn back, so the list may go first
    waiter->resumeLater(Waiter::State::given);
    return true;
}

void WaitList::resumeAll() {
    while (resumeFirst()) {
    }
}

WaitList::Waiter::~Waiter() {
    onStop_.reset();
    leave();
    if (state_ == State::given && list_ && list_->lostTurn_) list_->lostTurn_();
}

void WaitList::Waiter::suspend(std::coroutine_handle<> frame, const TaskContext& context) {
    frame_ = frame;
    loop_ = context.loop;
    previous_ = list_->last_;
    (previous_ ? previous_->next_ : list_->first_) = this;
    list_->last_ = this;
    isLinked_ = true;
    if (!isCancellable_) return;
    onStop_.emplace(context.stop, [this] {
        if (state_ != State::waiting) return;
        leave();
        resumeLater(State::cancelled);
    });
}

void WaitList::Waiter::resumeLater(State state) {
    state_ = state;
    resumption_ = Scheduled(*loop_, [this] { frame_.resume(); });
}

void WaitList::Waiter::await_resume() {
    onStop_.reset();
    if (std::exchange(state_, State::taken) == State::cancelled) throw CancellationError();
}

void WaitList::Waiter::leave() {
    if (!std::exchange(isLinked_, false)) return;
    (previous_ ? previous_->next_ : list_->first_) = next_;
    (next_ ? next_->previous_ : list_->last_) = previous_;
    previous_ = next_ = nullptr;
}

}  // namespace quillmar
