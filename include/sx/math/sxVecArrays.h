#pragma once

/// @file
/// Typed views (sxTArray) of arrays whose elements are vectors or byte
/// colours: sxTArray<sxVec3> and the like.

#include <sx/containers/sxTArray.h>
#include <sx/math/sxUByteVec.h>
#include <sx/math/sxVec2.h>
#include <sx/math/sxVec3.h>
#include <sx/math/sxVec4.h>

SX_ARRAY_ELEMENT(sxUByteVec3, sxArray::TYPE_UBYTEVEC3);
SX_ARRAY_ELEMENT(sxUByteVec4, sxArray::TYPE_UBYTEVEC4);
SX_ARRAY_ELEMENT(sxVec2, sxArray::TYPE_VEC2);
SX_ARRAY_ELEMENT(sxVec3, sxArray::TYPE_VEC3);
SX_ARRAY_ELEMENT(sxVec4, sxArray::TYPE_VEC4);
