#pragma once

// The base services a host starts with: Application::initialize (call it first, on the UI thread),
// paths and their environment overrides, exceptions and assertions, logs, JSON and XML nodes,
// grouped strings, string tables, options, the UI-thread queue, and the core's wide and UTF-8
// strings and byte streams.
#include <base/AppLogMgr.h>
#include <base/Application.h>
#include <base/Assert.h>
#include <base/Exception.h>
#include <base/JSONNode.h>
#include <base/JSONRef.h>
#include <base/OS.h>
#include <base/Options.h>
#include <base/Paths.h>
#include <base/StringTable.h>
#include <base/Strings.h>
#include <base/TempFile.h>
#include <base/UIThreadQueue.h>
#include <base/XMLAttributeProxy.h>
#include <base/XMLNode.h>
#include <base/XMLString.h>
#include <core/Guid.h>
#include <core/Strings.h>
#include <core/io/DataStream.h>
#include <core/io/FileDataStream.h>
