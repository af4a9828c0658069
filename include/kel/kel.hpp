/// \file
/// KEL for C++17: handles that own their values, C++ types, exceptions by value.
///
/// It consists of this header and those that it includes, on top of the interfaces of kel.h. Nothing
/// of it crosses the boundary of the library.
#pragma once

#include <kel/cpp/atomic.hpp>
#include <kel/cpp/differences.hpp>
#include <kel/cpp/history.hpp>
#include <kel/cpp/keep_unknown.hpp>
#include <kel/cpp/load_into.hpp>
#include <kel/cpp/mixed.hpp>
#include <kel/cpp/rings.hpp>
#include <kel/cpp/room_for.hpp>
#include <kel/cpp/set_aside.hpp>
#include <kel/cpp/take.hpp>
#include <kel/cpp/visit.hpp>
#include <kel/cpp/watch_path.hpp>
#include <kel/cpp/watch_tree.hpp>
#include <kel/cpp/watch_values.hpp>
