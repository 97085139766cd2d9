;;; drive.el --- Carries out the steps of a job  -*- lexical-binding: t; -*-

;; SPDX-License-Identifier: MIT

;;; Commentary:

;; Carries out the steps of the job that $JOB names, and writes what is to be
;; seen to $ANSWER.

;;; Code:

(require 'cl-lib)
(require 'json)
(require 'tessaly)

(defvar drive-messages nil)

(defun drive--visit (name job)
  "Visit the note NAME beside the file of JOB."
  (find-file (expand-file-name (concat "../" name)
                               (file-name-directory (alist-get 'file job)))))

(defun drive--step (step job)
  "Carry out STEP of JOB as the command loop would."
  (let ((argument (cadr step)))
    (undo-boundary)
    (setq last-command nil this-command nil)
    (pcase (car step)
      ("toggle" (tessaly-toggle))
      ("cancel" (tessaly-cancel))
      ("reopen" (tessaly-reopen))
      ("schedule" (tessaly-schedule argument))
      ("undo" (tessaly-undo))
      ("open" (tessaly-open argument))
      ("mark" (tessaly-mark argument))
      ("write" (save-excursion (end-of-line) (insert argument)))
      ("visit" (drive--visit argument job))
      ("editorUndo" (undo))
      ("keys" (call-interactively (key-binding (kbd argument))))
      ("complete" (let ((completing (lambda (_ names &rest _) (throw 'names names))))
                    (cl-letf (((symbol-function 'completing-read) completing))
                      (push (mapconcat #'identity
                                       (catch 'names (call-interactively #'tessaly-mark)) " ")
                            drive-messages))))
      ("narrow" (narrow-to-region (line-beginning-position) (line-end-position)))
      ("outside" (let ((file buffer-file-name))
                   (with-temp-file file
                     (insert argument))))
      (_ (error "No step %s" step)))))

(let* ((job (with-temp-buffer
              (insert-file-contents (getenv "JOB"))
              (let ((json-array-type 'list))
                (json-read-from-string (buffer-string)))))
       (anchor (alist-get 'anchor job)))
  (transient-mark-mode 1)
  (tessaly-global-mode 1)
  (find-file (alist-get 'file job))
  (run-hooks 'post-command-hook)
  (let ((keys (and tessaly-mode (eq (key-binding (kbd "C-c C-t t")) 'tessaly-toggle))))
    (goto-char (1+ (alist-get 'cursor job)))
    (when anchor
      (set-mark (1+ anchor)))
    (dolist (step (alist-get 'steps job))
      (condition-case problem
          (drive--step step job)
        (error (push (error-message-string problem) drive-messages))))
    (let ((answer `((text . ,(save-restriction (widen) (buffer-string)))
                    (cursor . ,(1- (point)))
                    (anchor . ,(and anchor (mark) (1- (mark))))
                    (messages . ,(mapconcat #'identity (reverse drive-messages) "\n"))
                    (file . ,buffer-file-name)
                    (modified . ,(if (buffer-modified-p) t json-false))
                    (keys . ,(if keys t json-false))))
          (coding-system-for-write 'utf-8-unix))
      (with-temp-file (getenv "ANSWER")
        (insert (json-encode answer))))))

;;; drive.el ends here
