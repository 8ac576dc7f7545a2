// SPDX-License-Identifier: ISC
/// Owning pointers to lilv's objects.
#pragma once

#include <lilv/lilv.h>

#include <memory>

namespace brindle {

template <auto Free>
struct LilvFree {
    template <typename T>
    void operator()(T* object) const {
        Free(object);
    }
};

using NodePtr = std::unique_ptr<LilvNode, LilvFree<lilv_node_free>>;
using NodesPtr = std::unique_ptr<LilvNodes, LilvFree<lilv_nodes_free>>;
using ScalePointsPtr = std::unique_ptr<LilvScalePoints, LilvFree<lilv_scale_points_free>>;
using StatePtr = std::unique_ptr<LilvState, LilvFree<lilv_state_free>>;
using WorldPtr = std::unique_ptr<LilvWorld, LilvFree<lilv_world_free>>;
using InstancePtr = std::unique_ptr<LilvInstance, LilvFree<lilv_instance_free>>;

}  // namespace brindle
