#include "AsyncFixture.h"

#include <future>
#include <vector>

using kel::P;
using vantra::CAsyncNetRequestThread;
using vantra::CNetRequest;

namespace {

/// Many requests through one worker, with a fixed number in flight: the end of one starts the next.
class Chain {
public:
    Chain(CAsyncNetRequestThread& thread, std::size_t count) : thread_(thread) {
        const P<CCallingListener> listener = new CCallingListener(
            [this](CNetRequest& request, const kel::CError* error) { onDone(request, error); });
        for (std::size_t number = 0; number < count; ++number) {
            requests_.push_back(mixture_.make(number));
            requests_.back()->setDoneListener(listener);
            successes_.push_back(-1);
        }
    }

    bool run(std::size_t inFlight) {
        for (std::size_t i = 0; i < inFlight; ++i) addNext();
        return allDone_.wait(5 * patienceMs);
    }

    /// After run(): what each request came to must be what was expected.
    void check() const {
        for (std::size_t number = 0; number < requests_.size(); ++number) {
            const std::string expected = mixture_.expected(number);
            EXPECT_EQ(Mixture::outcome(*requests_[number]), expected) << number;
            EXPECT_EQ(successes_[number], expected.starts_with("ok") ? 1 : 0) << number;
        }
    }

private:
    void addNext() {
        const std::size_t number = next_++;
        if (number < requests_.size()) thread_.addRequest(requests_[number]);
    }

    void onDone(CNetRequest& request, const kel::CError* error) {
        for (std::size_t number = 0; number < requests_.size(); ++number) {
            if (requests_[number].get() != &request) continue;
            EXPECT_EQ(successes_[number], -1) << number << " ended twice";
            successes_[number] = error ? 0 : 1;
        }
        addNext();
        if (++done_ == requests_.size()) allDone_.set();
    }

    CAsyncNetRequestThread& thread_;
    Mixture mixture_;
    std::vector<P<CNetRequest>> requests_;
    std::vector<int> successes_; // as the listener was told; -1 before
    std::atomic<std::size_t> next_{0};
    std::size_t done_ = 0;
    kel::CSignal allDone_;
};

TEST_F(Async, SettlesAThousandMixedRequestsWithAHundredInFlight) {
    Chain chain(*thread_, 1000);
    ASSERT_TRUE(chain.run(100));
    chain.check();
    EXPECT_TRUE(thread_->isAlive());
    EXPECT_EQ(thread_->getRunError(), nullptr);
}

TEST_F(Async, LosesNoRequestOfManySmallBatchesFromSeveralThreads) {
    constexpr std::size_t threads = 2;
    constexpr std::size_t each = 10;
    const Mixture mixture;
    for (int repetition = 0; repetition < 50; ++repetition) {
        const P<CAsyncNetRequestThread> worker = new CAsyncNetRequestThread(nullptr);
        worker->start();
        std::atomic<int> ends{0};
        const P<CCallingListener> listener =
            new CCallingListener([&](CNetRequest&, const kel::CError*) { ++ends; });
        std::vector<std::future<void>> submitters;
        for (std::size_t thread = 0; thread < threads; ++thread) {
            submitters.push_back(std::async(std::launch::async, [&, thread] {
                std::vector<P<CNetRequest>> requests;
                for (std::size_t i = 0; i < each; ++i) {
                    requests.push_back(mixture.make(thread * each + i));
                    requests.back()->setDoneListener(listener);
                    worker->addRequest(requests.back());
                }
                for (std::size_t i = 0; i < each; ++i) {
                    EXPECT_TRUE(requests[i]->waitAsyncDone(patienceMs)) << repetition;
                    EXPECT_EQ(Mixture::outcome(*requests[i]), mixture.expected(thread * each + i));
                }
                EXPECT_FALSE(worker->removeRequest(requests.back()));
            }));
        }
        for (std::future<void>& submitter : submitters) submitter.get();
        worker->stop(true);
        ASSERT_EQ(ends, static_cast<int>(threads * each)) << repetition;
        ASSERT_EQ(worker->getRunError(), nullptr) << repetition;
    }
}

} // namespace
