#pragma once

// Every public header of the library.

#include <ostraka/foundation/Directory.h>
#include <ostraka/foundation/Fatal.h>
#include <ostraka/foundation/TACallback.h>
#include <ostraka/foundation/TAFileBuffer.h>
#include <ostraka/foundation/TAFileName.h>
#include <ostraka/foundation/TAIndex.h>
#include <ostraka/foundation/TAIndexB.h>
#include <ostraka/foundation/TARefCounter.h>
#include <ostraka/foundation/TextHelpers.h>
#include <ostraka/foundation/TypedLists.h>
#include <ostraka/memreport/Call.h>
#include <ostraka/memreport/Error.h>
#include <ostraka/memreport/Stack.h>
#include <ostraka/memreport/StackMask.h>
#include <ostraka/memreport/TAPIndexContainer.h>
#include <ostraka/objects/TAPAttr.h>
#include <ostraka/objects/TAPObject.h>
#include <ostraka/symbols/HeaderTrace.h>
#include <ostraka/symbols/TAPDefClass.h>
#include <ostraka/symbols/TAPDefEntity.h>
#include <ostraka/symbols/TAPDefMethod.h>
#include <ostraka/symbols/TAPDefSource.h>
#include <ostraka/symbols/TAPDefVar.h>
#include <ostraka/symbols/TAPSymbolTable.h>
#include <ostraka/syntax/TAPExpression.h>
#include <ostraka/syntax/TAPInstruction.h>
#include <ostraka/syntax/TAPListOfArgs.h>
#include <ostraka/syntax/TAPSourceFile.h>
#include <ostraka/syntax/TAPSyntaxe.h>
#include <ostraka/syntax/TAPSyntaxePath.h>
#include <ostraka/syntax/TAPSyntaxePoint.h>
#include <ostraka/workspace/FrameworkListing.h>
#include <ostraka/workspace/FrameworkResponsibility.h>
