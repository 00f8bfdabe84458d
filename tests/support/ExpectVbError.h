#pragma once

#include <gtest/gtest.h>

#include "vb/VbError.h"

// Expects `statement` to raise a VbError with this number and description.
#define EXPECT_VB_ERROR(statement, expectedNumber, expectedDescription)    \
  do {                                                                     \
    try {                                                                  \
      (void)(statement);                                                   \
      ADD_FAILURE() << "no error raised by " #statement;                   \
    } catch (const ::tovrand::VbError& error) {                            \
      EXPECT_EQ(error.number(), (expectedNumber)) << #statement;           \
      EXPECT_EQ(error.description(), (expectedDescription)) << #statement; \
    }                                                                      \
  } while (false)
