-- Neovim's own client works on a script with the server that the environment variable YXST names:
--
--     nvim --headless -u NONE -c 'luafile neovim.lua' SCRIPT
--
-- What it has seen goes to standard output as JSON.

local PATIENCE = 30000 -- milliseconds

local seen = {}

local function wait_until(what, condition)
    if not vim.wait(PATIENCE, condition, 5) then
        error("waited in vain for " .. what)
    end
end

local function messages()
    return vim.tbl_map(function(diagnostic)
        return diagnostic.message
    end, vim.diagnostic.get(0))
end

local function lines()
    return vim.api.nvim_buf_get_lines(0, 0, -1, false)
end

-- Puts the cursor on the first occurrence of a word after a place.
local function go_to(word, line)
    vim.api.nvim_win_set_cursor(0, { line or 1, 0 })
    assert(vim.fn.search(word, "cW") > 0, word)
end

-- The answer of the server to a request about the place of the cursor.
local function ask(method)
    local answers = vim.lsp.buf_request_sync(0, method, vim.lsp.util.make_position_params(), PATIENCE)
    local _, answer = next(answers or {})
    assert(answer and not answer.err, vim.inspect(answer))
    return answer.result
end

local function session()
    vim.bo.shiftwidth = 4
    vim.bo.expandtab = true
    local client = vim.lsp.start_client({
        cmd = { os.getenv("YXST"), "lsp" },
        name = "yxst",
        settings = { yxst = { maxErrors = 10 } },
    })
    vim.lsp.buf_attach_client(0, client)
    wait_until("diagnostics", function()
        return #vim.diagnostic.get(0) > 0
    end)
    seen.diagnostics = messages()

    -- What is broken is mended as a user would do it.
    go_to("= 3")
    vim.api.nvim_put({ ":" }, "c", false, false)
    wait_until("a script without errors", function()
        return #vim.diagnostic.get(0, { severity = vim.diagnostic.severity.ERROR }) == 0
    end)

    go_to("level", 9)
    vim.cmd("normal! e")
    seen.hover = ask("textDocument/hover")

    local completed = ask("textDocument/completion")
    seen.completion = vim.lsp.util.extract_completion_items(completed)

    vim.lsp.buf.definition()
    wait_until("the jump", function()
        return vim.api.nvim_win_get_cursor(0)[1] == 4
    end)
    seen.jump = vim.api.nvim_win_get_cursor(0)

    vim.lsp.buf.rename("height")
    wait_until("the new name", function()
        return lines()[4]:find("height") ~= nil
    end)
    seen.renamed = lines()

    vim.lsp.buf.formatting_sync(nil, PATIENCE)
    seen.formatted = lines()

    wait_until("the last diagnostics", function()
        return #vim.diagnostic.get(0, { severity = vim.diagnostic.severity.ERROR }) == 0
    end)
    vim.lsp.stop_client(client)
    wait_until("the end", function()
        return vim.lsp.client_is_stopped(client)
    end)
end

local is_fine, failure = pcall(session)
seen.failure = not is_fine and tostring(failure) or nil
io.stdout:write(vim.fn.json_encode(seen), "\n")
vim.cmd("qall!")
