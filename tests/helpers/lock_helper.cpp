// Uses one lock as it is told, so that a test has several processes at a lock, step by step. Each line
// of the standard input is a command, each is answered by one line; without more lines it ends.

#include "tests/support/lock_helper.h"

#include "tests/support/count_file.h"
#include "tests/support/lock_image.h"
#include "tests/support/processes.h"
#include "vexakit/locks.h"

#include <array>
#include <cstdint>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <variant>

namespace vexa::test {

namespace {

using Lock = std::variant<std::unique_ptr<MutexLock>, std::unique_ptr<InterProcessLock>>;

Lock lockOf(std::string_view kind, const WideString& name) {
    if (kind == "mutex") return std::make_unique<MutexLock>(name.c_str());
    return std::make_unique<InterProcessLock>(name.c_str(), nullptr, 0);
}

bool hasObjects(const Lock& lock) {
    return std::visit([](auto& held) { return isMade(*held); }, lock);
}

void obtain(Lock& lock) {
    std::visit([](auto& held) { held->ObtainLock(); }, lock);
}

void release(Lock& lock) {
    std::visit([](auto& held) { held->ReleaseLock(); }, lock);
}

class Helper {
public:
    std::string perform(const std::string& line) {
        std::istringstream words{line};
        std::string name;
        words >> name;
        for (const Command& command : kCommands) {
            if (command.name == name) return (this->*command.action)(words);
        }
        return "unknown";
    }

private:
    using Words = std::istringstream;
    struct Command {
        std::string_view name;
        std::string (Helper::*action)(Words&);
    };

    // make <kind> <name>: "made", or "none" where the lock got no system objects
    std::string make(Words& words) {
        std::string name;
        words >> kind_ >> name;
        name_ = fromHex(name);
        lock_ = lockOf(kind_, name_);
        return hasObjects(lock_) ? "made" : "none";
    }

    std::string obtainLock(Words&) {
        obtain(lock_);
        return "obtained";
    }

    std::string tryLock(Words&) {
        return std::visit([](auto& lock) { return lock->TryLock(); }, lock_) ? "yes" : "no";
    }

    std::string releaseLock(Words&) {
        release(lock_);
        return "released";
    }

    std::string destroy(Words&) {
        std::visit([](auto& lock) { lock.reset(); }, lock_);
        return "destroyed";
    }

    // setspin <count>, for inter-process locks
    std::string setSpinCount(Words& words) {
        std::uint32_t count = 0;
        words >> count;
        interProcessLock().SetSpinCount(count);
        return "set";
    }

    std::string block(Words&) {
        std::ostringstream state;
        state << blockOf(interProcessLock());
        return state.str();
    }

    // user <number>: takes the rights of that user
    std::string user(Words& words) {
        std::uint32_t user = 0;
        words >> user;
        return becomeUser(user) ? "changed" : "unchanged";
    }

    // count <cell> <rounds> <file>: counts the first number of the file up, and one of its own
    std::string count(Words& words) {
        return countUnder(words, [this](auto& step) {
            obtain(lock_);
            step();
            release(lock_);
            return true;
        });
    }

    // storm <cell> <rounds> <file>: the same with a new lock of the name each time and none in between;
    // "none" where one got no system objects
    std::string storm(Words& words) {
        lock_ = {};
        return countUnder(words, [this](auto& step) {
            Lock lock = lockOf(kind_, name_);
            if (!hasObjects(lock)) return false;
            obtain(lock);
            step();
            release(lock);
            return true;
        });
    }

    // churn <rounds>: makes and destroys locks of the name; "none" where one got no system objects
    std::string churn(Words& words) {
        lock_ = {};
        std::uint64_t rounds = 0;
        words >> rounds;
        for (; rounds > 0; --rounds) {
            if (!hasObjects(lockOf(kind_, name_))) return "none";
        }
        return "churned";
    }

    template <class Round>
    static std::string countUnder(Words& words, Round round) {
        std::size_t cell = 0;
        std::uint64_t rounds = 0;
        std::string path;
        words >> cell >> rounds >> std::ws;
        std::getline(words, path);
        CountFile counts{path};
        if (!counts.isOpen()) return "no file";

        auto step = [&] {
            counts.countUp(0);
            counts.countUp(cell);
        };
        for (; rounds > 0; --rounds) {
            if (!round(step)) return "none";
        }
        return "counted";
    }

    InterProcessLock& interProcessLock() {
        return *std::get<std::unique_ptr<InterProcessLock>>(lock_);
    }

    static const std::array<Command, 11> kCommands;

    std::string kind_;
    WideString name_;
    Lock lock_;
};

const std::array<Helper::Command, 11> Helper::kCommands = {{
    {"make", &Helper::make},
    {"obtain", &Helper::obtainLock},
    {"try", &Helper::tryLock},
    {"release", &Helper::releaseLock},
    {"destroy", &Helper::destroy},
    {"setspin", &Helper::setSpinCount},
    {"block", &Helper::block},
    {"user", &Helper::user},
    {"count", &Helper::count},
    {"storm", &Helper::storm},
    {"churn", &Helper::churn},
}};

}  // namespace

}  // namespace vexa::test

int main() {
    // A test program that is stopped leaves no process at work behind.
    vexa::test::endWithParent();
    vexa::test::Helper helper;
    for (std::string line; std::getline(std::cin, line);) {
        std::cout << helper.perform(line) << std::endl;
    }
    return 0;
}
