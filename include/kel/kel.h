/// \file
/// KEL: dynamically typed, reference-counted, observable values, stored as text or binary.
///
/// This header includes everything that a host needs:
///
///     KEL_Struct* settings = CreateKELStruct();
///     settings->putInt("volume", 7);
///     KELTextOutputStream* out = CreateKELTextOutputStream("settings.kel", false);
///     out->write(settings);
///     DeleteKELOutputStream(out);
///     DeleteKEL(settings);
#pragma once

#include <kel/JException.h>
#include <kel/KEL.h>
#include <kel/KELException.h>
#include <kel/KELInputStream.h>
#include <kel/KELOutputStream.h>
#include <kel/KEL_Array.h>
#include <kel/KEL_Boolean.h>
#include <kel/KEL_Double.h>
#include <kel/KEL_IndexList.h>
#include <kel/KEL_Int.h>
#include <kel/KEL_Manager.h>
#include <kel/KEL_MemBlock.h>
#include <kel/KEL_MultiSelector.h>
#include <kel/KEL_Observable.h>
#include <kel/KEL_Selector.h>
#include <kel/KEL_String.h>
#include <kel/KEL_Struct.h>
#include <kel/KEL_guid.h>
#include <kel/MetaKel.h>
#include <kel/MetaKelDescriptor.h>
#include <kel/MetaKelVarDescriptor.h>
#include <kel/StringEnumeration.h>
