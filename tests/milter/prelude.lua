-- SPDX-License-Identifier: Apache-2.0
-- A mail server for tests: each function sends one step to the filter at the socket `address`, and
-- ends the script when the filter does not take it.

local connection = nil

local function must(result, what)
    if result ~= nil then
        error(what .. ": " .. tostring(result))
    end
end

function connect(name, client)
    connection = mt.connect(address, 50, 0.1)
    if connection == nil then
        error("no connection")
    end
    must(mt.conninfo(connection, name, client), "conninfo")
end

function macros(step, ...)
    must(mt.macro(connection, step, ...), "macro")
end

-- A client as Postfix describes it.
function postfix_client(name, client, helo_name)
    connect(name, client)
    macros(SMFIC_CONNECT, "j", "mx.example.net", "v", "Postfix 3.7.11", "{client_name}", name,
           "{client_ptr}", name)
    helo(helo_name)
end

function helo(name)
    must(mt.helo(connection, name), "helo")
end

function sender(value, ...)
    must(mt.mailfrom(connection, value, ...), "mailfrom")
end

function recipient(value)
    must(mt.rcptto(connection, value), "rcptto")
end

function header(name, value)
    must(mt.header(connection, name, " " .. value), "header")
end

function abort()
    must(mt.abort(connection), "abort")
end

-- Goes away without a word.
function vanish()
    mt.disconnect(connection, false)
end

function close()
    mt.disconnect(connection)
end

local replies = {
    [SMFIR_ACCEPT] = "accept",
    [SMFIR_CONTINUE] = "continue",
    [SMFIR_DISCARD] = "discard",
    [SMFIR_REJECT] = "reject",
    [SMFIR_REPLYCODE] = "replycode",
    [SMFIR_TEMPFAIL] = "tempfail",
}

-- Ends the message, and writes the reply and what the filter did.
function finish()
    must(mt.eom(connection), "eom")
    mt.echo(replies[mt.getreply(connection)] or tostring(mt.getreply(connection)))
    for index, name in ipairs({"X-QV-Deep-Header", "X-QV-Deep-Header-Reasons"}) do
        if mt.eom_check(connection, MT_HDRDELETE, name) then
            mt.echo("removed " .. name)
        end
        if mt.eom_check(connection, MT_HDRINSERT, name) then
            mt.echo(name .. ":" .. mt.getheader(connection, name, 0))
        end
    end
    if mt.eom_check(connection, MT_QUARANTINE) then
        mt.echo("quarantined")
    end
end

-- Of the reply to the message that ended last.
function has_reply(code, enhanced, text)
    mt.echo(tostring(mt.eom_check(connection, MT_SMTPREPLY, code, enhanced, text)))
end

-- From the envelope to the end.
function message(...)
    sender("<a@example.org>")
    recipient("<b@example.net>")
    header("From", "Alice <a@example.org>")
    for index, pair in ipairs({...}) do
        header(pair[1], pair[2])
    end
    finish()
end
