#include "values/TreeCopy.h"

#include "runtime/Storage.h"
#include "values/ChildCursor.h"
#include "values/OutOfMemory.h"
#include "values/UnfoldedSize.h"

#include <utility>

namespace kel {

namespace {

/// The treatment of null variables in a copy.
enum class NullVariables {
    replaced, ///< by the value that the copied container chooses
    kept,     ///< it remains null
};

/// Makes one deep copy.
class TreeCopy {
public:
    /// \param standIn the value that the copy contains in place of source; null for the copy itself
    TreeCopy(const KEL_Impl& source, NullVariables nulls, KEL_Impl* standIn)
        : source_(source), nulls_(nulls), standIn_(standIn) {}
    TreeCopy(const TreeCopy&) = delete;
    TreeCopy& operator=(const TreeCopy&) = delete;

    /// Takes the copies of an unfinished copy apart, because copies that contain each other keep
    /// each other alive.
    ~TreeCopy() {
        if (!finished_) {
            for (const auto& [value, copy] : copies_) {
                if (copy.get() != standIn_) {
                    copy->dropChildren();
                }
            }
        }
    }

    /// Returns the copy, owned by the caller.
    KEL_Impl* make() {
        JPointer<KEL_Impl> root = copyAll();
        if (root.isNull()) {
            root = copyAll(); // now one copy of each value
        }
        finished_ = true;
        return root.detach();
    }

private:
    /// The treatment of values that occur in several places.
    enum class Shape {
        unknown,  ///< none found yet that makes a difference
        unfolded, ///< a copy for each place
        kept,     ///< one copy of each value, because the source contains itself
    };

    struct Level {
        ChildCursor cursor;
        KEL_Impl* target;
    };

    /// \return null when the source turned out to contain itself
    JPointer<KEL_Impl> copyAll() {
        JPointer<KEL_Impl> root = copyOf(source_);
        while (!levels_.empty()) {
            Level& level = levels_.back();
            if (!level.cursor.next()) {
                levels_.pop_back();
                continue;
            }
            // The copy of a child pushes a level, so level is not used after it.
            KEL_Impl* target = level.target;
            const std::string_view name = level.cursor.name; // points into the source
            if (level.cursor.value == nullptr) {
                target->adoptCopiedChild(name, nulls_ == NullVariables::kept
                                                   ? JPointer<KEL_Impl>()
                                                   : target->copyOfNullVariable());
                continue;
            }
            JPointer<KEL_Impl> child = copyOf(*level.cursor.value);
            if (child.isNull()) {
                levels_.clear();
                return child;
            }
            target->adoptCopiedChild(name, std::move(child));
        }
        return root;
    }

    /// Copies one value, whose children follow. The copy belongs to its container as soon as it is
    /// made. \return null when the walk has to start again
    JPointer<KEL_Impl> copyOf(const KEL_Impl& value) {
        const bool hasLevel = value.copiesChildren();
        if (shape_ == Shape::unknown && hasLevel && canMeetAgain(value)) {
            decideShape();
            if (shape_ == Shape::kept) {
                return {};
            }
        }
        if (shape_ != Shape::kept) {
            JPointer<KEL_Impl> made(value.copyWithoutChildren());
            if (hasLevel) {
                levels_.push_back({ChildCursor(value), made.get()});
            }
            return made;
        }
        return copyOnce(value, hasLevel);
    }

    /// Returns the one copy of this value.
    JPointer<KEL_Impl> copyOnce(const KEL_Impl& value, bool hasLevel) {
        if (const auto known = copies_.find(&value); known != copies_.end()) {
            return known->second;
        }
        JPointer<KEL_Impl> made(value.copyWithoutChildren());
        const bool isStoodInFor = &value == &source_ && standIn_ != nullptr;
        copies_.emplace(&value, isStoodInFor ? JPointer<KEL_Impl>::share(standIn_) : made);
        if (hasLevel) {
            levels_.push_back({ChildCursor(value), made.get()});
        }
        return made;
    }

    /// Returns whether the walk can reach this container in another place too. The first visit of
    /// the root gives false. The root's only holder can be inside the root, so later visits
    /// recognise it by its address.
    bool canMeetAgain(const KEL_Impl& value) const {
        return !levels_.empty() && (value.isContentShared() ||
                                    &value.holderOfChildren() == &source_.holderOfChildren());
    }

    void decideShape() {
        const std::optional<uint64_t> size = unfoldedSize(source_);
        if (size > copyLimit) {
            throwOutOfMemory();
        }
        shape_ = size.has_value() ? Shape::unfolded : Shape::kept;
    }

    const KEL_Impl& source_;
    const NullVariables nulls_;
    KEL_Impl* const standIn_;
    Shape shape_ = Shape::unknown;
    bool finished_ = false;
    Vector<Level> levels_;
    HashMap<const KEL_Impl*, JPointer<KEL_Impl>> copies_; // only if the shape is kept
};

} // namespace

KEL_Impl* copyTree(const KEL_Impl& source) {
    return withOneOutOfMemory(
        [&] { return TreeCopy(source, NullVariables::replaced, nullptr).make(); });
}

KEL_Impl* copyTreeFor(const KEL_Impl& source, KEL_Impl& target) {
    return withOneOutOfMemory(
        [&] { return TreeCopy(source, NullVariables::kept, &target).make(); });
}

} // namespace kel
