/// @file vantra/vantra.h
/// The whole library.
#pragma once

#include "vantra/AsyncNetRequestManager.h"
#include "vantra/AsyncNetRequestThread.h"
#include "vantra/CURLError.h"
#include "vantra/GlobalInit.h"
#include "vantra/HeaderAssembler.h"
#include "vantra/HeaderValues.h"
#include "vantra/HTTPContentRange.h"
#include "vantra/HTTPStatusLine.h"
#include "vantra/NetHeaders.h"
#include "vantra/NetRequest.h"
#include "vantra/NetStringList.h"
#include "vantra/ProxySettings.h"
#include "vantra/ServerInfo.h"
#include "vantra/URLEncoding.h"
#include "vantra/Version.h"
