;; Emacs's eglot works on a script with the server that the environment variable YXST names:
;;
;;     emacs -q --batch -l eglot.el SCRIPT
;;
;; What it has seen goes to standard output as JSON.

(require 'eglot)
(require 'json)
(require 'flymake)

(define-derived-mode script-mode prog-mode "Script")
(add-to-list 'eglot-server-programs `(script-mode ,(getenv "YXST") "lsp"))

(setq eglot-sync-connect 30
      eglot-autoreconnect nil
      eglot-autoshutdown nil)

(defun wait-until (condition)
  "Wait until CONDITION gives something, which is what this gives."
  (with-timeout (30 (error "Waited in vain"))
    (let (found)
      (while (not (setq found (funcall condition)))
        (accept-process-output nil 0.01))
      found)))

(find-file (pop command-line-args-left))
(script-mode)
(setq tab-width 4
      indent-tabs-mode nil)
(apply #'eglot--connect (eglot--guess-contact))
(flymake-mode 1)
(flymake-start)

(let* ((diagnostics (wait-until (lambda () (flymake-diagnostics))))
       (texts (mapcar #'flymake-diagnostic-text diagnostics))
       (hover (progn
                (goto-char (point-min))
                (re-search-forward "level :")
                (goto-char (match-beginning 0))
                (jsonrpc-request (eglot--current-server-or-lose) :textDocument/hover
                                 (eglot--TextDocumentPositionParams)))))
  (goto-char (point-min))
  (re-search-forward "= 3")
  (goto-char (match-beginning 0))
  (insert ":")
  (eglot--signal-textDocument/didChange)
  (eglot-format-buffer)
  (let ((seen (list :diagnostics (vconcat texts)
                    :hover (plist-get (plist-get hover :contents) :value)
                    :formatted (buffer-string))))
    (eglot-shutdown (eglot--current-server-or-lose))
    (princ (json-encode seen))))
