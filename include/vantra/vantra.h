/// @file vantra/vantra.h
/// The whole library.
#pragma once

#include "vantra/AsyncNetRequestManager.h"
#include "vantra/AsyncNetRequestThread.h"
#include "vantra/CURLError.h"
#include "vantra/FTPClient.h"
#include "vantra/FTPDirEntry.h"
#include "vantra/FTPGetInfoResult.h"
#include "vantra/FTPListDirResult.h"
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
